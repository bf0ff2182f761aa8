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

std::wstring debugged;

/// Sees the debugger output as a debugger does; some systems tell its narrow form only.
LONG CALLBACK NoteDebugged(EXCEPTION_POINTERS* pointers)
{
    constexpr DWORD WideOutput = 0x4001000A, NarrowOutput = 0x40010006;
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    const ULONG_PTR text = record.ExceptionInformation[1];
    if (record.ExceptionCode == WideOutput)
        debugged = reinterpret_cast<const wchar_t*>(text);
    else if (record.ExceptionCode == NarrowOutput)
        debugged.assign(reinterpret_cast<const char*>(text),
                        reinterpret_cast<const char*>(text + record.ExceptionInformation[0] - 1));
    return EXCEPTION_CONTINUE_SEARCH;
}

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
    const std::size_t before = log.GetText().size();
    void* const debugger = AddVectoredExceptionHandler(TRUE, &NoteDebugged);
    log.Write(LogError, L"kept", std::wstring(1, L'\0'), L"whole");
    RemoveVectoredExceptionHandler(debugger);
    EXPECT_EQ(debugged, log.GetText().substr(before));
    EXPECT_TRUE(log.HasContent());
    EXPECT_THAT(log.GetText(), EndsWith(L" | kept whole\n"));
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
            scope = std::make_unique<LogScope>(L"scope");
        EXPECT_THAT(Log::Instance().Prefix(LogError), EndsWith(L" | . . . . . . . . . . "));
    }
    EXPECT_THAT(Log::Instance().Prefix(LogError), EndsWith(L"ERR   | "));
    EXPECT_EQ(log.Lines().size(), 22U);
}

TEST(LogScope, WritesItsExitLineThoughTracingWasTurnedOff)
{
    const test::LogCapture log(LogMark);
    {
        const LogScope traced(L"kept");
        Log::Instance().SetLevel(LogOff);
        const LogScope silent(L"silent");
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
