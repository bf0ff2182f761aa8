// Measures parts of the control's library: rendering a report, and writing a log line.
#include <string>

#include "Measure.h"
#include "diag/Log.h"
#include "run/store/XMLReport.h"
#include "support/TestSession.h"

namespace kel::bench {
namespace {

constexpr int Values = 1000;
constexpr int Reports = 20;
constexpr int Lines = 500;
constexpr int SilentLines = 1000 * 1000;

/// Milliseconds for each value of a report.
void Render()
{
    test::TestSession session;
    std::wstring wanted;
    for (unsigned id = 1; id <= Values; ++id) {
        session.values.AddValue(id, id % 10 == 0 ? L"Text <of> a & value" : L"Text of another value");
        wanted += std::to_wstring(id) + L"|";
    }
    session.wanted.Assign(wanted, L"", true);
    std::wstring report;
    Print("render", TimedEach(Reports, [&] {
                        XMLReport(session.values).GetReport(XMLReport::StandardOption, report);
                    }) / Values);
}

/// Milliseconds for each line, on and off.
void WriteLines()
{
    const std::wstring text = L"a text of the usual length";
    for (const int level : {LogError, LogWarning, LogTrace, LogMark, LogDump}) {
        const auto write = [&] { WriteLog(level, L"WMI value: ", text); };
        Log::Instance().SetLevel(level);
        Print("line.on." + std::to_string(level), TimedEach(Lines, write));
        Log::Instance().SetLevel(LogOff);
        Print("line.off." + std::to_string(level), TimedEach(SilentLines, write));
    }
}

}  // namespace
}  // namespace kel::bench

int main()
{
    kel::bench::Render();
    kel::bench::WriteLines();
}
