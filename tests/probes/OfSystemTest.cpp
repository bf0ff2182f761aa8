// Functions of the system, against the system itself.
#include <gmock/gmock.h>
#include <winsock2.h>

#include <fstream>

#include "platform/WindowsVersion.h"
#include "probes/graphics/DisplayFunctions.h"
#include "probes/graphics/GraphicsFunctions.h"
#include "probes/network/NetworkInterfaces.h"
#include "probes/software/SoftwareFunctions.h"
#include "probes/storage/StorageFunctions.h"
#include "probes/storage/Volumes.h"
#include "probes/system/Firmware.h"
#include "probes/system/Memory.h"
#include "probes/system/OSInfo.h"
#include "probes/system/WindowsInfo.h"
#include "support/TestFolder.h"
#include "values/Text.h"

namespace kel {
namespace {

TEST(OfSystem, NetworkFunctionsListTheInterfaces)
{
    const NetworkFunctions functions = NetworkFunctions::OfSystem();
    MIB_IF_TABLE2* table = nullptr;
    ASSERT_EQ(functions.getTable(&table), DWORD{NO_ERROR});
    EXPECT_GT(table->NumEntries, 0U);
    functions.freeTable(table);
    ULONG size = 0;
    EXPECT_EQ(functions.getAddresses(AF_UNSPEC, 0, nullptr, nullptr, &size), ULONG{ERROR_BUFFER_OVERFLOW});
    sockaddr_in own = {};
    own.sin_family = AF_INET;
    own.sin_addr.s_addr = 0x0100007F;
    DWORD index = 0;
    EXPECT_EQ(functions.getBestInterface(reinterpret_cast<sockaddr*>(&own), &index), DWORD{NO_ERROR});
    EXPECT_NE(index, 0U);
}

TEST(OfSystem, StorageFunctionsReachDevicesThatOthersUse)
{
    const StorageFunctions functions = StorageFunctions::OfSystem();
    wchar_t device[1000] = {}, expected[1000] = {};
    const DWORD length = QueryDosDeviceW(L"C:", expected, std::size(expected));
    EXPECT_EQ(functions.queryDosDevice(L"C:", device), length);
    EXPECT_STREQ(device, expected);
    const test::TestFolder folder;
    const std::wstring path = (folder.Path() / L"used").wstring();
    const HANDLE user =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 7, nullptr, CREATE_NEW, 0, nullptr);
    const HANDLE opened = functions.openDevice(path.c_str(), GENERIC_READ);
    EXPECT_NE(opened, INVALID_HANDLE_VALUE) << GetLastError();
    functions.closeDevice(opened);
    CloseHandle(user);
    DWORD size = 0;
    EXPECT_FALSE(functions.ioControl(INVALID_HANDLE_VALUE, 0, {}, {}, size));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_TRUE(VolumeFunctions::OfSystem().listDisks(L"?:").empty());
    wchar_t windows[MAX_PATH] = {};
    GetSystemWindowsDirectoryW(windows, std::size(windows));
    EXPECT_EQ(GetWindowsLetter(functions.getSystemWindowsDirectory), ToUpper(windows).substr(0, 2));
    EXPECT_THAT(functions.openDevice((path + L"x").c_str(), 0), INVALID_HANDLE_VALUE);
}

TEST(OfSystem, FunctionsAnswerAboutThisSystem)
{
    const std::optional<OSVERSIONINFOEXW> version = ReadWindowsVersion();
    ASSERT_TRUE(version);
    OSVERSIONINFOEXW reported = {};
    reported.dwOSVersionInfoSize = sizeof(reported);
    ASSERT_TRUE(OSFunctions::OfSystem().getVersion(reported));
    EXPECT_GE(version->dwMajorVersion, reported.dwMajorVersion);  // without a manifest, Windows reports 6.2
    EXPECT_TRUE(OSFunctions::OfSystem().getAdministrators());
    const SoftwareFunctions software = SoftwareFunctions::OfSystem();
    EXPECT_EQ(software.programMachine(), ReadNativeMachine(OSFunctions::OfSystem()));
    EXPECT_EQ(software.packageFolder(L"none"), L"");
    EXPECT_EQ(software.windowsBuild(), version->dwBuildNumber);
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof(status);
    EXPECT_TRUE(MemoryFunctions::OfSystem().status(&status));
    EXPECT_GT(status.ullTotalPhys, 0U);
    DWORD session = 0;
    ASSERT_TRUE(ProcessIdToSessionId(GetCurrentProcessId(), &session));
    EXPECT_EQ(DisplayFunctions::OfSystem().getSession(), session);
    const GraphicsFunctions graphics = GraphicsFunctions::OfSystem();
    OSVERSIONINFOW found = {};
    graphics.getVersion(found);
    EXPECT_EQ(found.dwMajorVersion, version->dwMajorVersion);
    EXPECT_TRUE(graphics.hasLibrary(L"kernel32.dll"));
    EXPECT_FALSE(graphics.hasLibrary(L"missing.dll"));
    const test::TestFolder folder;
    std::ofstream(folder.Path() / L"small.json") << "{}";
    EXPECT_EQ(graphics.readFile((folder.Path() / L"small.json").wstring()), "{}");
    const FirmwareFunctions firmware = FirmwareFunctions::OfSystem();
    TpmInfo tpm = {1, 0, 0, 0};
    EXPECT_NE(firmware.getVariableError(), DWORD{ERROR_SUCCESS});  // no variable has that name
    EXPECT_NE(firmware.getTpm(tpm), std::uint32_t{ERROR_CALL_NOT_IMPLEMENTED});
}

}  // namespace
}  // namespace kel
