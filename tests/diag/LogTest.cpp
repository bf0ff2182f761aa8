#include "diag/Log.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <regex>
#include <sstream>

#include "diag/LogScope.h"
#include "diag/Seconds.h"
#include "diag/SourceFailures.h"
#include "support/LocaleWatch.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

using testing::EndsWith;

std::wstring debugged;

/// Receives the debugger output as a debugger does; some systems pass only its narrow form.
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

TEST(Log, WritesLinesOfItsLevelEvenAfterAFailedWrite)
{
    Log log;
    log.Write(LogError, L"no level is set");
    log.SetLevel(-2);
    log.Write(LogError, L"a level below all");
    log.SetLevel(LogError);
    log.Write(LogWarning, L"above the level");
    EXPECT_FALSE(log.HasContent());
    const wchar_t* missing = nullptr;
    log.Write(LogError, missing);
    const std::size_t before = log.GetText().size();
    void* const debugger = AddVectoredExceptionHandler(TRUE, &NoteDebugged);
    log.Write(LogError, L"kept", std::wstring(1, L'\0'), L"whole");
    EXPECT_EQ(debugged, log.GetText().substr(before));
    std::make_unique<LogBuf>()->sputn(L"rest", 4);
    EXPECT_EQ(debugged, L"rest");  // written when the buffer ends
    RemoveVectoredExceptionHandler(debugger);
    EXPECT_TRUE(log.HasContent());
    EXPECT_THAT(log.GetText(), EndsWith(L" | kept whole\n"));

    LogBuf buffer;
    buffer.Emit(nullptr);
    EXPECT_FALSE(buffer.HasContent());
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
    EXPECT_TRUE(std::regex_match(seconds, std::wregex(LR"(\d\.\d{4})"))) << seconds.c_str();
    EXPECT_GE(std::stod(seconds), 0.016);
    const std::pair<int, const wchar_t*> words[] = {{1, L"ERR  "}, {2, L"WARN "}, {4, L"MARK "},
                                                    {5, L"DUMP "}, {6, L"     "}, {-1, L"     "}};
    for (const auto& [level, word] : words)
        EXPECT_THAT(log.Prefix(level), EndsWith(word + std::wstring(L" | ")));
    log.Exit();  // one too many
    log.Enter();
    EXPECT_THAT(log.Prefix(LogError), EndsWith(L" | . "));
}

TEST(LogScope, IndentsAtMostTenStepsAndAlwaysWritesItsExitLine)
{
    const test::LogCapture log(LogMark);
    {
        std::vector<std::unique_ptr<LogScope>> scopes(11);
        for (auto& scope : scopes)
            scope = std::make_unique<LogScope>(L"scope");
        EXPECT_THAT(Log::Instance().GetText(), testing::HasSubstr(L"MARK  | Entering: scope\n"));
        EXPECT_THAT(Log::Instance().Prefix(LogError), EndsWith(L" | . . . . . . . . . . "));
        Log::Instance().SetLevel(LogOff);
        const LogScope silent(L"silent");
    }
    EXPECT_THAT(Log::Instance().GetText(), EndsWith(L"MARK  | Exiting: scope\n"));
    EXPECT_EQ(log.Lines().size(), 22U);
}

TEST(Log, WritesSecondsLikeAStreamAndLeavesTheLocaleAlone)
{
    for (std::uint64_t number = 0; number < 1ULL << 32; number += 1 + number / 700 + number % 3) {
        const auto milliseconds = static_cast<std::uint32_t>(number);
        std::wostringstream stream;
        stream << milliseconds / 1000.0;
        ASSERT_EQ(SecondsText(milliseconds), stream.str()) << milliseconds;
    }
    EXPECT_EQ(SecondsText(1000005) + L" " + SecondsText(999999500) + L" " + SecondsText(1234565000),
              L"1000 1e+06 1.23456e+06");
    const test::LocaleWatch watch;
    Log log;
    log.SetLevel(LogMaximum);
    for (int line = 0; line < 3000; ++line)
        log.Write(LogTrace, L"line ", line);
}

TEST(Failures, OfADeviceAreItsOwnButAnExceptionIsOfTheDetector)
{
    std::vector<SourceFailure> failures;
    const FailureScope scope;
    CollectFailures(failures, [] { FailureScope::Note(L"disk 0", 5); });
    EXPECT_EQ(failures.size(), 1U);
    EXPECT_TRUE(scope.Found().AreNone());
    CollectFailures(failures, [] { FailureScope::NoteException(); });
    EXPECT_TRUE(scope.Found().hasException);
}

}  // namespace
}  // namespace kel
