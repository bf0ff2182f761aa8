#include "server/protocol/Intake.h"

#include <fmt/format.h>

#include "server/base/Fault.h"
#include "server/report/Xml.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

// A report with all values of a machine with dozens of disks and adapters has 1,400 groups.
constexpr std::size_t MaxGroups = 5'000, MaxElements = 20'000;
constexpr std::size_t MaxUserBytes = 1024,
                      MaxMachineBytes = 1024;  // bytes; a longer text does not identify a machine

}  // namespace

Intake Intake::Check(const std::string& body)
{
    // Checked before parsing: in a tree, tiny elements take many times their bytes.
    if (CountElements(body) > MaxElements)
        throw Fault(413, fmt::format("the report has more than {} elements", MaxElements));
    const auto report = std::make_shared<const Report>(Report::Read(body));
    if (report->Count() > MaxGroups)
        throw Fault(413, fmt::format("the report has more than {} groups", MaxGroups));
    const std::string& referrer = report->Text(Report::Referrer);
    const std::string& machine = report->Text(Report::Machine);
    return {report,
            {report->Text(Report::Session), IsReferrer(referrer) ? referrer : "",
             Shortened(report->Text(Report::User), MaxUserBytes),
             machine.size() <= MaxMachineBytes ? machine : "", body}};
}

}  // namespace kel::server
