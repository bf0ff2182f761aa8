#include "server/protocol/Service.h"

#include <random>

#include "server/base/Fault.h"
#include "server/base/Log.h"
#include "server/base/Text.h"
#include "server/protocol/AnalysisRequest.h"
#include "server/report/Xml.h"
#include "server/verdict/Rendering.h"
#include "server/verdict/Verdict.h"

namespace kel::server {

namespace {

constexpr std::size_t TestFileBytes = 1'000'000;
constexpr std::size_t LongestUser = 1024, LongestMachine = 1024;  // bytes; what is longer identifies nothing

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

Service::Service(Store& store, Metrics& metrics)
    : store(store),
      metrics(metrics),
      sets(store),
      testFile(std::make_shared<const std::string>(MakeTestFile()))
{
}

PublishedSet Service::Find(const std::string& referrer)
{
    auto set = IsReferrer(referrer) ? store.NewestSet(referrer) : std::nullopt;
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

Answer Service::Upload(const std::string& body)
{
    return KeepReport(Report::Read(body), body);
}

Answer Service::SystemInformation(const std::string& body)
{
    const pugi::xml_document document = ReadXml(body);
    const pugi::xml_node root = document.document_element();
    const pugi::xml_node data = root.child("Data");
    if (std::string_view(root.name()) != "SystemInformation" || !data)
        throw Fault(400, "the body is no system information");
    const std::string report = data.child_value();
    return KeepReport(Report::Read(report), report);
}

Answer Service::KeepReport(const Report& report, const std::string& body)
{
    const std::string& referrer = report.Text(Report::Referrer);
    const std::string& machine = report.Text(Report::Machine);
    store.Keep(NewReport{report.Text(Report::Session), IsReferrer(referrer) ? referrer : "",
                         Shortened(report.Text(Report::User), LongestUser),
                         machine.size() <= LongestMachine ? machine : "", body});
    ++metrics.uploads;
    Log(Level::Info, "uploaded",
        {{"session", report.Text(Report::Session)},
         {"referrer", referrer},
         {"values", std::to_string(report.Count())}});
    return Answer::Of("text/plain; charset=utf-8", "OK");
}

Answer Service::Analysis(const std::string& referrer, const std::string& body)
{
    const AnalysisRequest request = AnalysisRequest::Read(body);
    const PublishedSet set = Find(referrer);
    const auto stored = store.NewestReport(request.session);
    if (!stored)
        throw Fault(404, "no report of this session was uploaded");
    const Verdict verdict = Judge(*sets.Get(set.id), Report::Read(stored->body));
    const std::string total(NameOf(verdict.total));
    KeepVerdict(NewVerdict{stored->id, set.id, request.item, total, RenderLines(verdict)});
    metrics.AddVerdict(total);
    Log(Level::Info, "judged",
        {{"session", request.session},
         {"referrer", referrer},
         {"version", std::to_string(set.version)},
         {"total", total}});
    return Render(verdict, request);
}

/// The visitor gets the verdict in any case; one that is not stored is missing from the figures.
void Service::KeepVerdict(const NewVerdict& verdict)
{
    try {
        store.Keep(verdict);
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
