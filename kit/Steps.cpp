#include "kit/Steps.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "kit/Exits.h"
#include "kit/Text.h"
#include "program/text/UserError.h"
#include "service/Utf8.h"
#include "verdict/text/Text.h"

namespace kel::kit {

namespace {

constexpr std::size_t StepFields = 5;
constexpr unsigned MaxStepSeconds = 300;
constexpr std::size_t MaxOutputShown = 500;  // bytes of a step's output
constexpr std::string_view Prints = "prints ";
constexpr std::string_view To = " to ";

Row RunStep(const Step& step, const std::set<std::string>& has)
{
    Row row{"Steps", step.name, State::NotHere, step.expected, ""};
    for (const std::string& word : SplitFields(step.needs, ' ')) {
        if (!word.empty() && !has.contains(word)) {
            row.found = "needs " + word;
            return row;
        }
    }
    const Ran ran = RunProgram(FromUtf8(step.command), MaxStepSeconds);
    row.seconds = ran.seconds;
    row.found = !ran.isStarted ? "not started"
                : ran.isLate   ? "does not end"
                               : std::to_string(ran.code) + " " + Shortened(Trim(ran.output), MaxOutputShown);
    if (ran.isStarted && !ran.isLate && ran.code == NotHereCode)
        return row;
    row.state = IsExpected(step.expected, ran) ? State::Ok : State::Wrong;
    return row;
}

}  // namespace

bool IsExpected(const std::string& expected, const Ran& ran)
{
    if (!ran.isStarted || ran.isLate)
        return false;
    if (expected.starts_with(Prints))
        return ran.code == 0 && ran.output.find(expected.substr(Prints.size())) != std::string::npos;
    const std::size_t place = expected.find(To);
    const unsigned long first = std::strtoul(expected.c_str(), nullptr, 10);
    const unsigned long last =
        place == std::string::npos ? first : std::strtoul(expected.c_str() + place + To.size(), nullptr, 10);
    return ran.code >= first && ran.code <= last;
}

std::vector<Step> ReadSteps(const std::string& path)
{
    std::vector<Step> steps;
    for (const std::vector<std::string>& fields : ReadTable(path, StepFields)) {
        if (fields[0] != "user" && fields[0] != "rights")
            throw program::UserError(path + ": a step is for \"user\" or \"rights\", not \"" + fields[0] +
                                     "\".");
        steps.push_back({fields[1], fields[2], fields[3], fields[4], fields[0] == "rights"});
    }
    return steps;
}

Rows RunSteps(const std::vector<Step>& steps, const std::set<std::string>& has)
{
    Rows rows;
    for (const Step& step : steps) {
        rows.push_back(RunStep(step, has));
        std::printf("%s %s\n", rows.back().state == State::Wrong ? "WRONG" : "     ", step.name.c_str());
    }
    return rows;
}

}  // namespace kel::kit
