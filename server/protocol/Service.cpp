#include "server/protocol/Service.h"

#include <random>

#include "server/base/Fault.h"
#include "server/base/Log.h"
#include "server/protocol/AnalysisRequest.h"
#include "server/protocol/Intake.h"
#include "server/report/Characters.h"
#include "server/report/Xml.h"
#include "server/store/Reports.h"
#include "verdict/Rendering.h"
#include "verdict/Verdict.h"
#include "verdict/text/SessionNumber.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t TestFileBytes = 1'000'000;
constexpr std::size_t CacheBytes = 33'554'432;  // 3,000 usual reports

std::string MakeTestFile()
{
    std::mt19937 bits;  // NOLINT: the same file every time
    std::string file(TestFileBytes, '\0');
    for (char& byte : file)
        byte = static_cast<char>(bits());
    return file;
}

Answer Render(const Verdict& verdict, const AnalysisRequest& request, const SupportNote& note)
{
    const std::string format = Lower(request.format);
    if (format == "html")
        return Answer::Of("text/html; charset=utf-8", RenderPage(verdict, &note));
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

PublishedSet Service::Find(const std::string& referrer, Count& unknown)
{
    auto set = IsReferrer(referrer) ? RequirementSets(database).Newest(referrer) : std::nullopt;
    if (set)
        return *set;
    ++unknown;
    throw Fault(404, "the referrer is not known");
}

Answer Service::GroupList(const std::string& referrer)
{
    std::string list;
    for (const int group : sets.Get(Find(referrer, metrics.unknownInGroupLists).id)->Groups()) {
        if (!list.empty())
            list += '|';
        list += std::to_string(group);
    }
    return Answer::Of("text/plain; charset=utf-8", list);
}

Answer Service::Title(const std::string& referrer)
{
    const PublishedSet set = Find(referrer, metrics.unknownInGroupLists);  // which it is asked after
    return Answer::Of("text/plain; charset=utf-8", sets.Get(set.id)->title.Default());
}

Intake Service::CheckUpload(const std::string& body)
{
    try {
        return Intake::Check(body);
    } catch (const NoSession&) {
        ++metrics.uploadsWithoutSession;
        throw;
    }
}

Answer Service::Upload(std::string body)
{
    Clean(body);
    const Intake intake = CheckUpload(body);
    const std::int64_t id = Reports(database).Add(intake.entry);
    reports.Add(id, intake.report);
    ++metrics.uploads;
    metrics.checks.Reach(intake.entry.session, CheckSteps::Begun);
    // By its id: a session opens its verdict, so no line of the log has one.
    Log(Level::Info, "uploaded",
        {{"report", std::to_string(id)},
         {"referrer", intake.report->Text(Report::Referrer)},
         {"values", std::to_string(intake.report->Count())}});
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
    const PublishedSet set = Find(referrer, metrics.unknownInAnalyses);
    const auto newest = Reports(database).NewestOf(request.session);
    if (!newest)
        throw Fault(404, "no report of this session was uploaded");
    const auto report = FindReport(newest->id);
    const Verdict verdict = Judge(*sets.Get(set.id), report->Lookup());
    const std::string version = std::to_string(set.version);
    SaveVerdict(
        {newest->id, set.id, request.item, verdict.total, RenderLines(verdict), ResultLetters(verdict)});
    metrics.AddVerdict(verdict.total);
    metrics.checks.Reach(request.session, CheckSteps::Finished);
    Log(Level::Info, "judged",
        {{"report", std::to_string(newest->id)},
         {"referrer", referrer},
         {"version", version},
         {"total", std::string(ToString(verdict.total))}});
    return Render(verdict, request,
                  {SessionNumber(request.session), Now(), referrer + ", version " + version});
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
