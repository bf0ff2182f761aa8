// Functions of the system, against the system itself.
#include <gmock/gmock.h>
#include <winsock2.h>

#include <fstream>

#include "probes/network/NetworkInterfaces.h"
#include "probes/storage/StorageFunctions.h"
#include "support/TestFolder.h"

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
    EXPECT_EQ(GetWindowsLetter(functions.getSystemWindowsDirectory), L"C:");
    EXPECT_THAT(functions.openDevice((path + L"x").c_str(), 0), INVALID_HANDLE_VALUE);
}

}  // namespace
}  // namespace kel
