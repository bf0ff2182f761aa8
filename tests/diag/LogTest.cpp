#include "diag/Log.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <regex>
#include <vector>

#include "diag/LogScope.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

TEST(Log, WritesNothingUntilALevelIsSet)
{
    Log log;
    log.Write(LogError, L"lost");
    EXPECT_EQ(log.GetText(), L"");
    EXPECT_FALSE(log.HasContent());
    log.SetLevel(LogError);
    log.Write(LogWarning, L"lost");
    log.Write(LogError, L"kept");
    EXPECT_TRUE(log.HasContent());
    EXPECT_TRUE(log.GetText().ends_with(L"kept\n"));
    EXPECT_EQ(log.GetText().find(L"lost"), std::wstring::npos);
}

TEST(Log, ClampsTheLevelAtSevenOnly)
{
    const struct {
        int set, stored;
        bool writesErrors;
    } rows[] = {{9, 7, true}, {7, 7, true}, {1, 1, true}, {0, 0, false}, {-2, -2, false}};
    for (const auto& row : rows) {
        Log log;
        log.SetLevel(row.set);
        EXPECT_EQ(log.GetLevel(), row.stored);
        EXPECT_EQ(log.IsEnabled(LogError), row.writesErrors);
    }
}

TEST(Log, PrefixesLinesWithTimeSecondsWordAndIndentation)
{
    Log log;
    const std::wstring first = log.Prefix(LogTrace);
    EXPECT_TRUE(std::regex_match(first, std::wregex(LR"(([01]\d|2[0-3])(:[0-5]\d){2}  000000  TRACE \| )")))
        << first.c_str();
    const std::pair<int, const wchar_t*> words[] = {
        {1, L"ERR  "}, {2, L"WARN "}, {3, L"TRACE"},  {4, L"MARK "},  {5, L"DUMP "},
        {6, L"     "}, {7, L"     "}, {99, L"     "}, {-1, L"     "}, {0, L"     "}};
    for (const auto& [level, word] : words) {
        const std::wstring prefix = log.Prefix(level);
        EXPECT_EQ(prefix.substr(prefix.size() - 8), word + std::wstring(L" | ")) << level;
    }
    while (log.Enter() < 2) {
    }
    EXPECT_TRUE(log.Prefix(LogError).ends_with(L" | . . "));
}

TEST(Log, PadsTheElapsedSecondsOnTheRight)
{
    Log log;
    log.Prefix(LogError);
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < 20) {
    }
    const std::wstring seconds = log.Prefix(LogError).substr(10, 6);
    EXPECT_TRUE(std::regex_match(seconds, std::wregex(LR"(0\.\d{4})"))) << seconds.c_str();
    EXPECT_GE(std::stod(seconds), 0.016);
}

TEST(Log, GoesOnAfterATextThatCannotBeWritten)
{
    Log log;
    log.SetLevel(LogError);
    const wchar_t* missing = nullptr;
    log.Write(LogError, missing);
    log.Write(LogError, L"next");
    EXPECT_TRUE(log.GetText().ends_with(L"next\n"));
}

TEST(LogScope, IndentsByAtMostTenAndReturnsToZero)
{
    const test::LogCapture log(LogMark);
    {
        std::vector<std::unique_ptr<LogScope>> scopes;
        for (int i = 0; i < 11; ++i)
            scopes.push_back(std::make_unique<LogScope>(L"scope", LogScope::Tracing()));
        const std::wstring prefix = Log::Instance().Prefix(LogError);
        EXPECT_TRUE(prefix.ends_with(L" | . . . . . . . . . . ")) << prefix.c_str();
        while (!scopes.empty())
            scopes.pop_back();
    }
    EXPECT_TRUE(Log::Instance().Prefix(LogError).ends_with(L"ERR   | "));
    EXPECT_EQ(log.Lines().size(), 22U);
    EXPECT_EQ(log.Lines().front(), L"MARK Entering: scope");
}

TEST(LogScope, WritesItsExitLineThoughTracingWasTurnedOff)
{
    const test::LogCapture log(LogMark);
    {
        const LogScope traced(L"kept", LogScope::Tracing());
        Log::Instance().SetLevel(LogOff);
        const LogScope silent(L"silent", LogScope::Tracing());
    }
    EXPECT_EQ(log.Lines(), (std::vector<std::wstring>{L"MARK Entering: kept", L"MARK Exiting: kept"}));
}

TEST(LogBuf, WritesRawUtf16ToItsFileAndTheRestWhenDestroyed)
{
    const auto path =
        std::filesystem::temp_directory_path() / ("kel_log_" + std::to_string(GetCurrentProcessId()));
    {
        LogBuf buffer;
        buffer.SetFile(std::make_unique<std::ofstream>(path, std::ios::binary));
        buffer.Emit(nullptr);
        EXPECT_FALSE(buffer.HasContent());
        std::wostream stream(&buffer);
        stream << L"a\n" << std::flush << L"\u00e9";
        EXPECT_EQ(buffer.Text(), L"a\n");
    }
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    file.close();
    std::filesystem::remove(path);
    EXPECT_EQ(bytes, std::string("a\0\n\0\xe9\0", 6));
}

}  // namespace
}  // namespace kel
