#include <gmock/gmock.h>

#include "platform/Library.h"
#include "probes/graphics/DisplayFunctions.h"
#include "probes/graphics/GraphicsFunctions.h"
#include "probes/network/NetworkInterfaces.h"
#include "probes/software/SoftwareFunctions.h"
#include "probes/system/OSInfo.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

/// Wine lacks three of the functions that are looked up on demand.
TEST(SystemFunctions, AreFoundByTheirNames)
{
    const test::LogCapture log(LogTrace);
    const OSFunctions system = OSFunctions::OfSystem();
    EXPECT_TRUE(system.getProductInfo);
    EXPECT_TRUE(system.getNativeSystemInfo);
    EXPECT_TRUE(system.isWow64Process);
    EXPECT_EQ(system.getUserDefaultLCID(), GetUserDefaultLCID());
    const GraphicsFunctions graphics = GraphicsFunctions::OfSystem();
    graphics.askKernel({}, 13);
    void* none = nullptr;
    IDirect3D9Ex* direct3D = nullptr;
    IMalloc* noAdapter = nullptr;  // refused, as an adapter that is null is not where there is no display
    EXPECT_EQ(CoGetMalloc(1, &noAdapter), S_OK);
    graphics.createDxgiFactory(IID_NULL, &none);
    graphics.createDirect3D9(0, &direct3D);
    graphics.createDevice10(nullptr, {}, nullptr, 0, {}, 0, nullptr);
    graphics.createDevice11(nullptr, {}, nullptr, 0, nullptr, 0, 0, nullptr, nullptr, nullptr);
    graphics.createDevice12(noAdapter, {}, IID_NULL, nullptr);
    graphics.getDxDiagClass(IID_NULL, IID_NULL, &none);
    OSVERSIONINFOW version = {};
    graphics.getVersion(version);
    EXPECT_GE(version.dwMajorVersion, 6U);
    const SoftwareFunctions software = SoftwareFunctions::OfSystem();
    wchar_t text[MAX_PATH] = {};
    DWORD size = MAX_PATH;
    software.versionRecord(L"none");
    software.relatedProduct(L"none", 0, text);
    software.productInfo(L"none", L"VersionString", text, &size);
    software.packages(L"none");
    software.packageFolder(L"none");
    ReadInterfaceTable(NetworkFunctions::OfSystem(), {});
    ReadAdapterAddresses(NetworkFunctions::OfSystem(), {});
    EXPECT_THAT(log.Lines(),
                testing::IsSubsetOf({L"TRACE The system has no function D3DKMTQueryAdapterInfo",
                                     L"TRACE The system has no function GetPackagesByPackageFamily",
                                     L"TRACE The system has no function GetPackagePathByFullName"}));
}

TEST(SystemFunctions, ListEachMonitorOnceWithItsPixels)
{
    const std::vector<MONITORINFO> monitors = DisplayFunctions::OfSystem().listMonitors();
    ASSERT_EQ(monitors.size(), static_cast<std::size_t>(GetSystemMetrics(SM_CMONITORS)));
    const RECT& first = monitors.front().rcMonitor;
    EXPECT_EQ(first.right - first.left, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(first.bottom - first.top, GetSystemMetrics(SM_CYSCREEN));
}

DWORD modeWhileLoading = 0;

void CALLBACK NoteMode(ULONG reason, const void*, void*)
{
    constexpr ULONG Loaded = 1;
    if (reason == Loaded)
        modeWhileLoading = GetThreadErrorMode();
}

TEST(Library, IsLoadedWithoutAnErrorBox)
{
    using Register = LONG NTAPI(ULONG flags, decltype(&NoteMode), void* context, void** cookie);
    void* cookie = nullptr;
    const auto notify = FindFunction<Register>(GetModuleHandleW(L"ntdll.dll"), "LdrRegisterDllNotification");
    ASSERT_EQ(notify(0, &NoteMode, nullptr, &cookie), 0);
    EXPECT_TRUE(LoadSystemLibrary(L"msvfw32.dll"));
    EXPECT_EQ(modeWhileLoading, static_cast<DWORD>(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX));
}

}  // namespace
}  // namespace kel
