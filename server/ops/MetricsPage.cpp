#include "server/ops/MetricsPage.h"

#include <charconv>
#include <string_view>

#include "server/base/Embedded.h"
#include "server/ops/Memory.h"

namespace kel::server {

namespace {

/// The page while it is being built.
class Page {
public:
    /// Begins a metric; its samples follow.
    void Metric(std::string_view newName, std::string_view type, std::string_view help)
    {
        name = newName;
        text.append("# HELP ").append(name).append(" ").append(help);
        text.append("\n# TYPE ").append(name).append(" ").append(type).append("\n");
    }

    /// `labels` as they are written between the braces.
    void Sample(std::string_view labels, double value, std::string_view suffix = "")
    {
        text.append(name).append(suffix);
        if (!labels.empty())
            text.append("{").append(labels).append("}");
        text.append(" ").append(Number(value)).append("\n");
    }

    void Sample(std::string_view labels, std::uint64_t value, std::string_view suffix = "")
    {
        Sample(labels, static_cast<double>(value), suffix);
    }

    static std::string Number(double value)
    {
        std::array<char, 32> digits{};
        return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr};
    }

    std::string text;

private:
    std::string name;
};

std::string Label(std::string_view name, std::string_view value)
{
    return std::string(name).append("=\"").append(value).append("\"");
}

void AppendStatuses(Page& page, const std::string& labels, const StatusCounts& counts)
{
    for (int status = StatusCounts::Min; status <= StatusCounts::Max; ++status) {
        if (const std::uint64_t count = counts.Of(status); count > 0)
            page.Sample(labels + "," + Label("status", std::to_string(status)), count);
    }
}

void AppendTimes(Page& page, const std::string& labels, const Histogram& times)
{
    std::uint64_t count = 0;
    for (std::size_t place = 0; place <= Histogram::Bounds.size(); ++place) {
        count += times.At(place);
        const bool isLast = place == Histogram::Bounds.size();
        page.Sample(labels + "," + Label("le", isLast ? "+Inf" : Page::Number(Histogram::Bounds.at(place))),
                    count, "_bucket");
    }
    page.Sample(labels, times.Sum(), "_sum");
    page.Sample(labels, count, "_count");
}

void AppendEndpoints(Page& page, const Metrics& metrics)
{
    const auto forEndpoints = [&](auto append) {
        for (const EndpointMetrics* endpoint : {&metrics.publicEndpoint, &metrics.adminEndpoint})
            append(Label("endpoint", endpoint->name), *endpoint);
    };
    page.Metric("kel_http_requests_total", "counter", "Requests that were answered, by route and status.");
    forEndpoints([&](const std::string& labels, const EndpointMetrics& endpoint) {
        for (const EndpointMetrics::Route& route : endpoint.routes)
            AppendStatuses(page,
                           labels + "," + Label("method", route.method) + "," + Label("route", route.pattern),
                           route.counts);
    });
    page.Metric("kel_http_refusals_total", "counter",
                "Requests refused by the endpoint: a limit, or not HTTP.");
    forEndpoints(
        [&](const auto& labels, const auto& endpoint) { AppendStatuses(page, labels, endpoint.refused); });
    page.Metric("kel_http_request_seconds", "histogram",
                "Time from a request's last byte until its answer is ready.");
    forEndpoints(
        [&](const auto& labels, const auto& endpoint) { AppendTimes(page, labels, endpoint.times); });
    page.Metric("kel_connections", "gauge", "Connections that are open.");
    forEndpoints(
        [&](const auto& labels, const auto& endpoint) { page.Sample(labels, endpoint.connections); });
    page.Metric("kel_connections_refused_total", "counter", "Connections past what the endpoint allows.");
    forEndpoints([&](const auto& labels, const auto& endpoint) { page.Sample(labels, endpoint.turnedAway); });
    page.Metric("kel_bodies_bytes", "gauge", "Bytes of the bodies in progress, of requests and answers.");
    forEndpoints(
        [&](const auto& labels, const auto& endpoint) { page.Sample(labels, endpoint.bodiesBytes); });
}

/// The number of answers of routes whose database failed.
std::uint64_t DatabaseErrors(const EndpointMetrics& endpoint)
{
    std::uint64_t count = 0;
    for (const EndpointMetrics::Route& route : endpoint.routes)
        count += route.counts.Of(503);
    return count;
}

}  // namespace

Answer MetricsPage(const Metrics& metrics, const Database& database)
{
    Page page;
    AppendEndpoints(page, metrics);
    page.Metric("kel_uploads_total", "counter", "Reports that were kept.");
    page.Sample("", metrics.uploads);
    page.Metric("kel_uploads_without_session_total", "counter",
                "Reports that were refused because they name no session.");
    page.Sample("", metrics.uploadsWithoutSession);
    page.Metric("kel_unknown_products_total", "counter",
                "Requests for a product that has no requirements, by the request.");
    page.Sample(Label("request", "group list"), metrics.unknownInGroupLists);
    page.Sample(Label("request", "analysis"), metrics.unknownInAnalyses);
    page.Metric("kel_characters_replaced_total", "counter",
                "Characters of reports and requests that XML does not allow, replaced by U+FFFD.");
    page.Sample("", metrics.replacedCharacters);
    page.Metric("kel_verdicts_total", "counter", "Verdicts, by their total.");
    for (std::size_t i = 0; i < Metrics::Totals.size(); ++i)
        page.Sample(Label("total", ToString(Metrics::Totals.at(i))), metrics.verdicts.at(i));
    page.Metric("kel_verdicts_not_kept_total", "counter", "Verdicts that were answered but not stored.");
    page.Sample("", metrics.verdictsNotKept);
    page.Metric("kel_check_downloads_total", "counter", "Downloads of the program for visitors.");
    page.Sample("", metrics.downloads);
    page.Metric("kel_check_downloads_active", "gauge", "Those that are in progress.");
    page.Sample("", metrics.activeDownloads);
    page.Metric("kel_checks_total", "counter", "Checks of visitors whose page waits, by the step reached.");
    for (const CheckSteps::Step step : {CheckSteps::Begun, CheckSteps::Finished, CheckSteps::Shown})
        page.Sample(Label("step", CheckSteps::Names.at(step)), metrics.checks.Of(step));
    page.Metric("kel_room_for_reports", "gauge", "1 while there is room for reports, else 0.");
    page.Sample("", std::uint64_t{database.HasRoom()});
    if (const std::int64_t free = database.FreeBytes(); free >= 0) {
        page.Metric("kel_database_free_bytes", "gauge",
                    "Room on the file system of the database, and inside its file.");
        page.Sample("", static_cast<std::uint64_t>(free));
    }
    page.Metric("kel_database_errors_total", "counter", "Requests that failed because the database did.");
    page.Sample("", DatabaseErrors(metrics.publicEndpoint) + DatabaseErrors(metrics.adminEndpoint));
    page.Metric("kel_process_start_time_seconds", "gauge", "When the service started, since 1970.");
    page.Sample("", std::chrono::duration<double>(metrics.start.time_since_epoch()).count());
    page.Metric("kel_process_resident_memory_bytes", "gauge", "Memory in use.");
    page.Sample("", ResidentMemory());
    page.Metric("kel_build_info", "gauge", "The version, as a label.");
    page.Sample(Label("version", Version), std::uint64_t{1});
    return Answer::Of("text/plain; version=0.0.4; charset=utf-8", page.text);
}

}  // namespace kel::server
