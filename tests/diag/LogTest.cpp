#include "diag/Log.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

#include "diag/LogScope.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::Not;

TEST(Log, WritesLinesOfItsLevelAlsoAfterATextThatCannotBeWritten)
{
    Log log;
    log.Write(LogError, L"no level is set");
    log.SetLevel(-2);
    log.Write(LogError, L"a level below all");
    EXPECT_FALSE(log.HasContent());
    log.SetLevel(LogError);
    log.Write(LogWarning, L"above the level");
    const wchar_t* missing = nullptr;
    log.Write(LogError, missing);
    log.Write(LogError, L"kept");
    EXPECT_TRUE(log.HasContent());
    EXPECT_THAT(log.GetText(), EndsWith(L"kept\n"));
    EXPECT_THAT(log.GetText(), Not(testing::HasSubstr(L"level")));
}

TEST(Log, PrefixesLinesWithTimeSecondsWordAndIndentation)
{
    Log log;
    const std::wstring first = log.Prefix(LogTrace);
    EXPECT_TRUE(std::regex_match(first, std::wregex(LR"(([01]\d|2[0-3])(:[0-5]\d){2}  000000  TRACE \| )")))
        << first.c_str();
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < 20) {
    }
    const std::wstring seconds = log.Prefix(LogError).substr(10, 6);
    EXPECT_TRUE(std::regex_match(seconds, std::wregex(LR"(0\.\d{4})"))) << seconds.c_str();
    EXPECT_GE(std::stod(seconds), 0.016);
    const std::pair<int, const wchar_t*> words[] = {{1, L"ERR  "}, {2, L"WARN "}, {4, L"MARK "},
                                                    {5, L"DUMP "}, {6, L"     "}, {-1, L"     "}};
    for (const auto& [level, word] : words)
        EXPECT_THAT(log.Prefix(level), EndsWith(word + std::wstring(L" | ")));
    while (log.Enter() < 2) {
    }
    EXPECT_THAT(log.Prefix(LogError), EndsWith(L" | . . "));
}

TEST(LogScope, IndentsByAtMostTenAndReturnsToZero)
{
    const test::LogCapture log(LogMark);
    {
        std::vector<std::unique_ptr<LogScope>> scopes(11);
        for (auto& scope : scopes)
            scope = std::make_unique<LogScope>(L"scope", LogScope::Tracing());
        EXPECT_THAT(Log::Instance().Prefix(LogError), EndsWith(L" | . . . . . . . . . . "));
    }
    EXPECT_THAT(Log::Instance().Prefix(LogError), EndsWith(L"ERR   | "));
    EXPECT_EQ(log.Lines().size(), 22U);
}

TEST(LogScope, WritesItsExitLineThoughTracingWasTurnedOff)
{
    const test::LogCapture log(LogMark);
    {
        const LogScope traced(L"kept", LogScope::Tracing());
        Log::Instance().SetLevel(LogOff);
        const LogScope silent(L"silent", LogScope::Tracing());
    }
    EXPECT_THAT(log.Lines(), ElementsAre(L"MARK Entering: kept", L"MARK Exiting: kept"));
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
