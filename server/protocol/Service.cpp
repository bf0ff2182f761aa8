#include "server/protocol/Service.h"

#include <fmt/format.h>
#include <random>

#include "server/base/Fault.h"
#include "server/base/Log.h"
#include "server/protocol/AnalysisRequest.h"
#include "server/report/Characters.h"
#include "server/report/Xml.h"
#include "server/store/Reports.h"
#include "verdict/Rendering.h"
#include "verdict/Verdict.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t TestFileBytes = 1'000'000;
// A report with all values of a machine with dozens of disks and adapters has 1,400 groups.
constexpr std::size_t MaxGroups = 5'000, MaxElements = 20'000;
constexpr std::size_t CacheBytes = 33'554'432;  // 3,000 usual reports
constexpr std::size_t MaxUserBytes = 1024,
                      MaxMachineBytes = 1024;  // bytes; a longer text does not identify a machine

std::string MakeTestFile()
{
    std::mt19937 bits;  // NOLINT: the same file every time
    std::string file(TestFileBytes, '\0');
    for (char& byte : file)
        byte = static_cast<char>(bits());
    return file;
}

Answer Render(const Verdict& verdict, const AnalysisRequest& request)
{
    const std::string format = Lower(request.format);
    if (format == "html")
        return Answer::Of("text/html; charset=utf-8", RenderPage(verdict));
    if (format == "json")
        return Answer::Of("application/json", RenderJson(verdict, request.item, request.schema));
    return Answer::Of("text/xml; charset=utf-8", RenderXml(verdict, request.item, request.schema));
}

}  // namespace

Service::Service(Database& database, Metrics& metrics)
    : database(database),
      metrics(metrics),
      sets(database),
      reports(CacheBytes),
      testFile(std::make_shared<const std::string>(MakeTestFile()))
{
}

PublishedSet Service::Find(const std::string& referrer)
{
    auto set = IsReferrer(referrer) ? RequirementSets(database).Newest(referrer) : std::nullopt;
    if (!set)
        throw Fault(404, "the referrer is not known");
    return *set;
}

Answer Service::GroupList(const std::string& referrer)
{
    std::string list;
    for (const int group : sets.Get(Find(referrer).id)->Groups()) {
        if (!list.empty())
            list += '|';
        list += std::to_string(group);
    }
    return Answer::Of("text/plain; charset=utf-8", list);
}

Answer Service::Upload(std::string body)
{
    Clean(body);
    // Checked before parsing: in a tree, tiny elements take many times their bytes.
    if (CountElements(body) > MaxElements)
        throw Fault(413, fmt::format("the report has more than {} elements", MaxElements));
    const auto report = std::make_shared<const Report>(Report::Read(body));
    if (report->Count() > MaxGroups)
        throw Fault(413, fmt::format("the report has more than {} groups", MaxGroups));
    const std::string& session = report->Text(Report::Session);
    const std::string& referrer = report->Text(Report::Referrer);
    const std::string& machine = report->Text(Report::Machine);
    const std::int64_t id = Reports(database).Add(NewReport{
        session, IsReferrer(referrer) ? referrer : "", Shortened(report->Text(Report::User), MaxUserBytes),
        machine.size() <= MaxMachineBytes ? machine : "", body});
    reports.Add(id, report);
    ++metrics.uploads;
    metrics.checks.Reach(session, CheckSteps::Begun);
    // By its id: a session opens its verdict, so no line of the log has one.
    Log(Level::Info, "uploaded",
        {{"report", std::to_string(id)},
         {"referrer", referrer},
         {"values", std::to_string(report->Count())}});
    return Answer::Of("text/plain; charset=utf-8", "OK");
}

Answer Service::SystemInformation(std::string body)
{
    Clean(body);
    const pugi::xml_document document = ReadXml(body);
    const pugi::xml_node root = document.document_element();
    const pugi::xml_node data = root.child("Data");
    if (std::string_view(root.name()) != "SystemInformation" || !data)
        throw Fault(400, "the body is not a SystemInformation document");
    return Upload(data.child_value());
}

Answer Service::Analysis(const std::string& referrer, std::string body)
{
    Clean(body);
    const AnalysisRequest request = AnalysisRequest::Read(body);
    const PublishedSet set = Find(referrer);
    const auto newest = Reports(database).NewestOf(request.session);
    if (!newest)
        throw Fault(404, "no report of this session was uploaded");
    const auto report = FindReport(newest->id);
    const Verdict verdict = Judge(*sets.Get(set.id), report->Lookup());
    const std::string total(ToString(verdict.total));
    SaveVerdict(NewVerdict{newest->id, set.id, request.item, verdict.total, RenderLines(verdict)});
    metrics.AddVerdict(total);
    metrics.checks.Reach(request.session, CheckSteps::Finished);
    Log(Level::Info, "judged",
        {{"report", std::to_string(newest->id)},
         {"referrer", referrer},
         {"version", std::to_string(set.version)},
         {"total", total}});
    return Render(verdict, request);
}

std::shared_ptr<const Requirements> Service::FindRequirements(const std::string& product)
{
    const auto set = IsReferrer(product) ? RequirementSets(database).NewestForPage(product) : std::nullopt;
    return set ? sets.Get(set->id) : nullptr;
}

std::optional<Verdict> Service::FindVerdict(const std::string& product, const Requirements& requirements,
                                            const std::string& session, const Languages& languages)
{
    const auto newest = Reports(database).NewestOf(session);
    if (!newest || newest->referrer != product)
        return std::nullopt;
    return Judge(requirements, FindReport(newest->id)->Lookup(), languages);
}

void Service::Clean(std::string& xml)
{
    metrics.replacedCharacters += ReplaceForbiddenCharacters(xml);
}

std::shared_ptr<const Report> Service::FindReport(std::int64_t id)
{
    if (auto report = reports.Find(id))
        return report;
    const auto stored = Reports(database).Find(id);
    if (!stored)
        throw Fault(404, "the report has been deleted");
    auto report = std::make_shared<const Report>(Report::Read(stored->body));
    reports.Add(id, report);
    return report;
}

/// The visitor gets the verdict in any case; one that is not stored is missing from the figures.
void Service::SaveVerdict(const NewVerdict& verdict)
{
    try {
        Verdicts(database).Save(verdict);
    } catch (const Fault& fault) {
        ++metrics.verdictsNotKept;
        Log(Level::Error, "verdict-not-kept", {{"reason", fault.what()}});
    }
}

Answer Service::TestFile() const
{
    return {200, "application/octet-stream", testFile, {}, true};
}

}  // namespace kel::server
