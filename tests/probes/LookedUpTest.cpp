// Functions that are looked up by name, answered for by the test.
#include <gmock/gmock.h>

#include <map>
#include <set>
#include <string>
#include <utility>

#include "probes/graphics/DisplayFunctions.h"
#include "probes/graphics/GraphicsFunctions.h"
#include "probes/network/NetworkInterfaces.h"
#include "probes/setup/SetupEntryPoints.h"
#include "probes/software/SoftwareFunctions.h"
#include "probes/sound/SoundEndpoints.h"
#include "probes/system/OSInfo.h"
#include "support/LogCapture.h"
#include "support/ReplacedImport.h"

extern "C" decltype(&GetProcAddress) __imp_GetProcAddress;

namespace kel {
namespace {

const auto FindInSystem = __imp_GetProcAddress;
std::map<std::string, void*> lookedUp;  // the functions that are found
std::set<std::wstring> ofSystem;        // the log's lines about others, which the system of the tests has
std::vector<std::string> notedCalls;

FARPROC WINAPI FindKnown(HMODULE library, LPCSTR name)
{
    if (FindInSystem(library, name) != nullptr)
        ofSystem.insert(L"TRACE The system has no function " + std::wstring(name, name + strlen(name)));
    return reinterpret_cast<FARPROC>(lookedUp[name]);
}

struct LookedUp : testing::Test {
    const std::shared_ptr<void> lookup = test::ReplaceImport(__imp_GetProcAddress, &FindKnown);
};

template <typename Function>
void Add(const char* name, Function* function)
{
    lookedUp[name] = reinterpret_cast<void*>(function);
}

TEST_F(LookedUp, FunctionsThatAreMissingAnswerWithNothing)
{
    const test::LogCapture log(LogTrace);
    const GraphicsFunctions graphics = GraphicsFunctions::OfSystem();
    void* none = nullptr;
    IDirect3D9Ex* direct3D = nullptr;
    EXPECT_EQ(graphics.createDxgiFactory(IID_NULL, &none), E_NOTIMPL);
    EXPECT_EQ(graphics.createDirect3D9(0, &direct3D), E_NOTIMPL);
    EXPECT_EQ(graphics.createDevice10(nullptr, {}, nullptr, 0, {}, 0, nullptr), E_NOTIMPL);
    EXPECT_EQ(graphics.createDevice11(nullptr, {}, nullptr, 0, nullptr, 0, 0, nullptr, nullptr, nullptr),
              E_NOTIMPL);
    EXPECT_EQ(graphics.createDevice12(nullptr, {}, IID_NULL, nullptr), E_NOTIMPL);
    EXPECT_EQ(graphics.getDxDiagClass(IID_NULL, IID_NULL, &none), E_NOTIMPL);
    EXPECT_EQ(graphics.askKernel({}, 13), 0U);
    EXPECT_EQ(graphics.isIntegratedByDxCore({}), std::nullopt);
    OSVERSIONINFOW version = {};
    graphics.getVersion(version);
    EXPECT_EQ(version.dwMajorVersion, 0U);
    const SoftwareFunctions software = SoftwareFunctions::OfSystem();
    wchar_t text[MAX_PATH] = {};
    DWORD size = MAX_PATH;
    EXPECT_TRUE(software.versionRecord(L"none").empty());
    EXPECT_EQ(software.relatedProduct(L"none", 0, text), static_cast<UINT>(ERROR_NO_MORE_ITEMS));
    EXPECT_EQ(software.productInfo(L"none", L"", text, &size), static_cast<UINT>(ERROR_UNKNOWN_PROPERTY));
    EXPECT_TRUE(software.packages(L"none").empty());
    EXPECT_EQ(software.packageFolder(L"none"), L"");
    EXPECT_EQ(software.programId(L"http"), L"");
    EXPECT_EQ(software.windowsBuild(), 0U);
    const OSFunctions system = OSFunctions::OfSystem();
    EXPECT_FALSE(system.getNativeSystemInfo || system.getProductInfo || system.isWow64Process ||
                 system.isWow64Process2);
    EXPECT_EQ(system.getUserDefaultLCID(), GetUserDefaultLCID());
    EXPECT_FALSE(NetworkFunctions::OfSystem().getBestInterface);
    const DisplayFunctions displays = DisplayFunctions::OfSystem();
    EXPECT_EQ(displays.getPrimaryDpi(), std::nullopt);
    for (const MONITORINFO& monitor : displays.listMonitors())
        EXPECT_EQ(monitor.rcMonitor.right, 0) << "would be scaled";
    std::vector<std::wstring> unknown = log.Lines();
    std::erase_if(unknown, [](const std::wstring& line) {
        return ofSystem.contains(line) || line.find(L"has no function") == line.npos;
    });
    EXPECT_THAT(unknown, testing::IsSubsetOf({L"TRACE The system has no function D3DKMTQueryAdapterInfo",
                                              L"TRACE The system has no function DXCoreCreateAdapterFactory",
                                              L"TRACE The system has no function GetPackagesByPackageFamily",
                                              L"TRACE The system has no function GetPackagePathByFullName"}))
        << "are not in Wine either";
}

UINT WINAPI CountThree()
{
    return 3;
}

TEST_F(LookedUp, SoundOutputsAreCountedByTheSystem)
{
    EXPECT_EQ(SoundFunctions::OfSystem().countOutputs(), 0U);
    Add("waveOutGetNumDevs", &CountThree);
    EXPECT_EQ(SoundFunctions::OfSystem().countOutputs(), 3U);
}

struct Packages {
    LONG first;
    UINT32 count, size;
    LONG second;
    std::size_t expected;
} packageAnswer;

LONG WINAPI GetPackages(PCWSTR, UINT32* count, PWSTR* names, UINT32* size, PWSTR text)
{
    *count = packageAnswer.count;
    *size = packageAnswer.size;
    if (names == nullptr)
        return packageAnswer.first;
    std::fill_n(names, *count, wcscpy(text, L"a"));
    return packageAnswer.second;
}

LONG folderResult = 0;

LONG WINAPI GetFolder(PCWSTR, UINT32* size, PWSTR text)
{
    wcscpy(text, *size == 32768 ? L"C:\\a" : L"size");
    return folderResult;
}

TEST_F(LookedUp, PackagesAreThoseOfTheFamilyWithinLimits)
{
    constexpr LONG Small = ERROR_INSUFFICIENT_BUFFER;
    constexpr Packages Rows[] = {
        {Small, 1, 2, ERROR_SUCCESS, 1},         {Small, 64, 65536, ERROR_SUCCESS, 64},
        {Small, 65, 65536, ERROR_SUCCESS, 0},    {Small, 1, 65537, ERROR_SUCCESS, 0},
        {ERROR_SUCCESS, 1, 2, ERROR_SUCCESS, 0}, {Small, 1, 2, Small, 0},
    };
    Add("GetPackagesByPackageFamily", &GetPackages);
    Add("GetPackagePathByFullName", &GetFolder);
    const SoftwareFunctions software = SoftwareFunctions::OfSystem();
    for (const Packages& row : Rows) {
        packageAnswer = row;
        EXPECT_EQ(software.packages(L"family"), std::vector<std::wstring>(row.expected, L"a"))
            << row.count << " packages, " << row.size << " characters, " << row.first << ", " << row.second;
    }
    EXPECT_EQ(software.packageFolder(L"a"), L"C:\\a");
    folderResult = ERROR_NOT_FOUND;
    EXPECT_EQ(software.packageFolder(L"a"), L"");
}

HANDLE WINAPI SetAwareness(HANDLE awareness)
{
    notedCalls.push_back("awareness " + std::to_string(reinterpret_cast<INT_PTR>(awareness)));
    return reinterpret_cast<HANDLE>(7);
}

std::pair<HRESULT, UINT> givenDpi;

HRESULT WINAPI GetDpi(HMONITOR monitor, int type, UINT* horizontal, UINT* vertical)
{
    notedCalls.push_back("type " + std::to_string(type));
    *horizontal = monitor == MonitorFromPoint({0, 0}, MONITOR_DEFAULTTOPRIMARY) ? givenDpi.second : 1;
    *vertical = 2;
    return givenDpi.first;
}

TEST_F(LookedUp, DotsPerInchAreThePrimaryMonitorsOwn)
{
    Add("SetThreadDpiAwarenessContext", &SetAwareness);
    Add("GetDpiForMonitor", &GetDpi);
    const DisplayFunctions displays = DisplayFunctions::OfSystem();
    givenDpi = {S_OK, 144};
    EXPECT_EQ(displays.getPrimaryDpi(), 144U);
    EXPECT_THAT(notedCalls, testing::ElementsAre("awareness -3", "type 0", "awareness 7"));
    for (const auto& refused : {std::pair<HRESULT, UINT>(E_FAIL, 144), {S_OK, 0}}) {
        givenDpi = refused;
        EXPECT_EQ(displays.getPrimaryDpi(), std::nullopt) << givenDpi.second;
    }
    for (const MONITORINFO& monitor : displays.listMonitors())
        EXPECT_GT(monitor.rcMonitor.right, monitor.rcMonitor.left);
    lookedUp["SetThreadDpiAwarenessContext"] = nullptr;
    givenDpi = {S_OK, 144};
    EXPECT_EQ(displays.getPrimaryDpi(), std::nullopt) << "of a scaled process";
}

TEST_F(LookedUp, TheSetupApiIsOnlyUsedWithAllOfItsFunctions)
{
    const auto isComplete = [] {
        SetupEntryPoints functions;
        return SetupEntryPoints::Load(functions) && functions.IsComplete();
    };
    EXPECT_FALSE(isComplete());
    EXPECT_EQ(ofSystem.size(), 12U);
    for (auto& [name, function] : lookedUp)
        function = reinterpret_cast<void*>(&GetDpi);
    EXPECT_TRUE(isComplete());
    for (auto& [name, function] : lookedUp) {
        void* const kept = std::exchange(function, nullptr);
        EXPECT_FALSE(isComplete()) << name;
        function = kept;
    }
}

TEST(SystemFunctions, ListEachMonitorOnceWithItsPixels)
{
    const std::vector<MONITORINFO> monitors = DisplayFunctions::OfSystem().listMonitors();
    ASSERT_EQ(monitors.size(), static_cast<std::size_t>(GetSystemMetrics(SM_CMONITORS)));
    const RECT& first = monitors.front().rcMonitor;
    EXPECT_EQ(first.right - first.left, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(first.bottom - first.top, GetSystemMetrics(SM_CYSCREEN));
}

}  // namespace
}  // namespace kel
