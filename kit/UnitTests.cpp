#include "kit/UnitTests.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "kit/Exits.h"
#include "kit/Process.h"
#include "kit/Text.h"
#include "service/Utf8.h"
#include "verdict/text/Text.h"

namespace kel::kit {

namespace {

constexpr const wchar_t* Programs[] = {L"kel_tests.exe", L"client_tests.exe", L"verdict_tests.exe",
                                       L"program_tests.exe", L"fuzz_tests.exe"};
constexpr unsigned MaxTestSeconds = 600;
constexpr std::size_t MaxFailureShown = 2000;  // bytes of a failing test's output

Ran RunTest(const std::wstring& program, const std::string& name)
{
    const std::wstring command = Quoted(program) + L" --gtest_filter=" + FromUtf8(name);
    Ran ran = RunProgram(command, MaxTestSeconds);
    // Rarely, Wine ends a process at its start without a word. A test that ran has written something.
    return ran.code != 0 && ran.output.empty() ? RunProgram(command, MaxTestSeconds) : ran;
}

Row Judge(const std::string& name, const Ran& ran)
{
    Row row{"Unit tests", name, State::Wrong, "passes", "", ran.seconds};
    const bool isPassed = ran.output.find("[  PASSED  ] 1 test") != std::string::npos;
    // Wine may end a crashed program with 0.
    const bool isCrashed = ran.output.find("Unhandled exception") != std::string::npos;
    if (ran.code == NotHereCode || ran.output.find("[  SKIPPED ]") != std::string::npos) {
        row.state = State::NotHere;
        row.found = "the test cannot run on this system";
    } else if (ran.code == 0 && isPassed && !isCrashed) {
        row.state = State::Ok;
        row.found = "passes";
    } else {
        const std::size_t cut = ran.output.size() - std::min(ran.output.size(), MaxFailureShown);
        row.found = (ran.isLate ? "does not end; " : "ended with " + std::to_string(ran.code) + "; ") +
                    ran.output.substr(cut);
    }
    return row;
}

}  // namespace

std::vector<std::string> ReadTestNames(const std::string& listed)
{
    std::vector<std::string> names;
    std::string suite;
    for (std::string line : LinesOf(listed)) {
        line = line.substr(0, line.find("  # "));  // "  # GetParam() = …"
        if (line.starts_with("  "))
            names.push_back(suite + std::string(Trim(line)));
        else if (line.ends_with('.'))
            suite = line;
    }
    return names;
}

Rows RunUnitTests(const std::wstring& folder, const std::wstring& filter)
{
    Rows rows;
    for (const wchar_t* const file : Programs) {
        const std::wstring program = folder + L"\\" + file;
        if (!std::filesystem::exists(program)) {
            rows.push_back({"Unit tests", ToUtf8(file), State::NotHere, "", "not in this kit"});
            continue;
        }
        const Ran listed =
            RunProgram(Quoted(program) + L" --gtest_list_tests --gtest_filter=" + filter, MaxTestSeconds);
        const std::vector<std::string> names = ReadTestNames(listed.output);
        if (listed.code != 0)
            rows.push_back({"Unit tests", ToUtf8(file), State::Wrong, "lists its tests", listed.output});
        for (const std::string& name : names) {
            rows.push_back(Judge(name, RunTest(program, name)));
            std::printf("%s %s\n", rows.back().state == State::Wrong ? "WRONG" : "     ", name.c_str());
        }
    }
    return rows;
}

}  // namespace kel::kit
