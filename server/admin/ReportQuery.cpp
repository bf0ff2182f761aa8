#include "server/admin/ReportQuery.h"

#include <fmt/format.h>

#include "server/admin/Layout.h"
#include "server/admin/kit/Texts.h"
#include "verdict/text/SessionNumber.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

/// A number from 1 on; 0 for an empty text, and for any other, which becomes the problem.
int ReadNumber(const AdminRequest& request, const char* name, std::string& problem)
{
    const std::string text = request.Query(name);
    const std::int64_t number = text.empty() ? 0 : WholeNumber(text);
    if (!text.empty() && (number < 1 || number > INT32_MAX))
        problem = fmt::format("'{}' has to be a number from 1 on.", name);
    return problem.empty() ? static_cast<int>(number) : 0;
}

std::string ReadResult(const AdminRequest& request, const char* name, std::string& problem)
{
    const std::string text = request.Query(name);
    if (!text.empty() && !ParseResult(text))
        problem = fmt::format("'{}' has to be pass, fail or unknown.", name);
    return text;
}

}  // namespace

ReportQuery ReportQuery::Read(const AdminRequest& request)
{
    ReportQuery query{request.Query("referrer"), request.Query("session")};
    query.user = request.Query("user");
    query.machine = request.Query("machine");
    query.failing = request.Query("failing");
    query.verdict = ReadResult(request, "verdict", query.problem);
    query.version = ReadNumber(request, "version", query.problem);
    query.line = ReadNumber(request, "line", query.problem);
    query.result = ReadResult(request, "result", query.problem);
    query.condition = ValueCondition::Read(request, query.problem);
    const std::string once = request.Query("once");
    query.isOnce = once == "1";
    query.period = Period::Read(request, Period::All);
    if (query.version > 0 && query.referrer.empty())
        query.problem = "'version' needs 'referrer', the product that has it.";
    else if ((query.line > 0 || !query.result.empty()) &&
             (query.line == 0 || query.version == 0 || query.result.empty()))
        query.problem = "A line is given by 'version', 'line' and 'result' together.";
    else if (!query.failing.empty() && query.referrer.empty())
        query.problem = "A line belongs to a product: fill in the product, too.";
    else if (!once.empty() && !query.isOnce)
        query.problem = "'once' has to be 1.";
    else if (query.problem.empty())
        query.problem = Period::Problem(request);
    return query;
}

ReportQuery ReportQuery::SessionsOf(const std::string& referrer, const Period& period)
{
    ReportQuery query{referrer, {}};
    query.isOnce = true;
    query.period = period;
    return query;
}

ReportQuery ReportQuery::With(std::string_view total) const
{
    ReportQuery query = *this;
    query.verdict = total;
    return query;
}

ReportQuery ReportQuery::OfVersion(int number) const
{
    ReportQuery query = *this;
    query.version = number;
    return query;
}

ReportQuery ReportQuery::WithLine(int number, std::string_view lineResult) const
{
    ReportQuery query = *this;
    query.line = number;
    query.result = lineResult;
    return query;
}

ReportQuery ReportQuery::WithValue(const ValueCondition& value) const
{
    ReportQuery query = *this;
    query.condition = value;
    return query;
}

ReportFilter ReportQuery::Filter() const
{
    ReportFilter filter;
    filter.referrer = referrer;
    filter.beginnings = SessionBeginnings(Trim(session));
    if (filter.beginnings.empty())
        filter.session = session;
    filter.user = user;
    filter.machine = machine;
    filter.total = ParseResult(verdict);
    filter.version = version;
    filter.line = line;
    filter.lineResult = ParseResult(result);
    filter.isOnce = isOnce;
    filter.from = period.FromTime();
    filter.until = period.UntilTime();
    return filter;
}

std::string ReportQuery::Restrictions() const
{
    std::string address;
    const auto add = [&](const char* name, const std::string& value) {
        if (!value.empty())
            address.append("&").append(name).append("=").append(UrlEncode(value));
    };
    add("referrer", referrer);
    add("session", session);
    add("user", user);
    add("machine", machine);
    add("failing", failing);
    add("verdict", verdict);
    add("version", version > 0 ? std::to_string(version) : "");
    add("line", line > 0 ? std::to_string(line) : "");
    add("result", result);
    if (condition.IsGiven()) {
        add("value", std::to_string(condition.id));
        add("comparison", condition.comparison);
        add("text", condition.text);
        add("of", condition.ofAny ? "any" : "");
        add("outcome", condition.outcome == Result::Pass ? "" : std::string(ToString(condition.outcome)));
    }
    add("once", isOnce ? "1" : "");
    return address;
}

Html CountLink(const ReportQuery& query, std::int64_t count)
{
    return count == 0 ? Html(Grouped(0)) : Link(query.Address(), Grouped(count));
}

}  // namespace kel::server
