#include "platform/Library.h"

#include <gtest/gtest.h>
#include <wbemcli.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/LibraryPreload.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

std::vector<std::pair<std::wstring, DWORD>> asked;  // names and flags
DWORD modeWhileLoading = 0;

/// Windows 7 without the update that brings the flag.
HMODULE WINAPI LoadAsBefore(LPCWSTR name, HANDLE file, DWORD flags)
{
    asked.emplace_back(name, flags);
    if (flags != LOAD_LIBRARY_SEARCH_SYSTEM32)
        return LoadLibraryExW(name, file, flags);
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
}

HMODULE WINAPI LoadNothing(LPCWSTR name, HANDLE, DWORD flags)
{
    asked.emplace_back(name, flags);
    modeWhileLoading = GetThreadErrorMode();
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

TEST(Library, IsLoadedByItsWholePathWhereTheFlagIsUnknown)
{
    asked.clear();
    const OwnedLibrary library = LoadSystemLibrary(L"powrprof.dll", &LoadAsBefore);
    ASSERT_NE(library, nullptr);
    EXPECT_NE(GetProcAddress(library.get(), "GetPwrCapabilities"), nullptr);
    std::wstring expected(MAX_PATH, L'\0');
    expected.resize(GetSystemDirectoryW(expected.data(), MAX_PATH));
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[1].first, expected + L"\\powrprof.dll");
    EXPECT_EQ(asked[1].second, static_cast<DWORD>(LOAD_WITH_ALTERED_SEARCH_PATH));
}

TEST(Library, IsNotSearchedForElsewhereWhenItIsMissing)
{
    asked.clear();
    EXPECT_EQ(LoadSystemLibrary(L"powrprof.dll", &LoadNothing), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(modeWhileLoading, static_cast<DWORD>(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX))
        << "an error box may appear";
}

TEST(Library, WarnsOfAFunctionThatIsMissing)
{
    const test::LogCapture log;
    EXPECT_NE(FindLoadedFunction<void()>(L"kernel32.dll", "GetVersionExW"), nullptr);
    EXPECT_EQ(FindLoadedFunction<void()>(L"kernel32.dll", "NoFunction"), nullptr);
    EXPECT_EQ(FindLoadedFunction<void()>(L"no library", "OfNoLibrary"), nullptr);
    EXPECT_EQ(log.Lines(), (std::vector<std::wstring>{L"TRACE The system has no function NoFunction",
                                                      L"TRACE The system has no function OfNoLibrary"}));
}

TEST(Library, IsLoadedAheadAndStaysLoaded)
{
    static constexpr const wchar_t* Names[] = {L"no library", L"wsnmp32.dll"};
    static constexpr CLSID Classes[] = {{}, __uuidof(WbemLocator)};
    static constexpr LibraryPreload::List List = {Names, Classes};
    ASSERT_EQ(GetModuleHandleW(L"wsnmp32.dll"), nullptr);
    ASSERT_EQ(GetModuleHandleW(L"wbemprox.dll"), nullptr);
    {
        const LibraryPreload libraries(List);
    }
    EXPECT_NE(GetModuleHandleW(L"wsnmp32.dll"), nullptr);
    EXPECT_NE(GetModuleHandleW(L"wbemprox.dll"), nullptr);
}

}  // namespace
}  // namespace kel
