#include "server/http/Router.h"

#include "server/base/Fault.h"
#include "server/base/Log.h"

namespace kel::server {

std::optional<std::vector<std::string>> MatchPath(std::string_view pattern, std::string_view path)
{
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t star = pattern.find('*');
        const std::string_view before = pattern.substr(0, star);
        if (star == std::string_view::npos ? path != pattern : !path.starts_with(before))
            return std::nullopt;
        if (star == std::string_view::npos)
            return parts;
        pattern.remove_prefix(star + 1);
        path.remove_prefix(before.size());
        const std::string_view part = path.substr(0, path.find('/'));
        if (part.empty())
            return std::nullopt;
        parts.emplace_back(part);
        path.remove_prefix(part.size());
    }
}

void Router::Add(std::string_view method, std::string_view pattern, Handler handler)
{
    Route route{std::string(method), std::string(pattern), std::move(handler),
                metrics.AddRoute(method, pattern)};
    routes.push_back(std::move(route));
}

Answer Router::Handle(const Request& request) const noexcept
{
    StatusCounts* counts = &metrics.unrouted;
    Answer answer = Try(request, counts);
    counts->Add(answer.status);
    if (answer.status == NoRoom::Code)
        answer.status = 503;  // clients do not know 507
    return answer;
}

Answer Router::Try(const Request& request, StatusCounts*& counts) const noexcept
{
    try {
        return Find(request, counts);
    } catch (const Fault& fault) {
        Log(fault.Status() < 500 ? Level::Warning : Level::Error, "refused",
            {{"status", std::to_string(fault.Status())},
             {"target", WithoutSessions(request.target)},
             {"reason", fault.what()}});
        return Fail(request, fault.Status());
    } catch (const std::exception& error) {
        Log(Level::Error, "failed", {{"target", WithoutSessions(request.target)}, {"reason", error.what()}});
        return Fail(request, 500);
    }
}

Answer Router::Fail(const Request& request, int status) const
{
    return failure ? failure(request, status) : Answer::Empty(status);
}

Answer Router::Find(const Request& request, StatusCounts*& counts) const
{
    const auto target = Target::Read(request.target);
    std::string allowed;
    for (const Route& route : routes) {
        auto parts = target ? MatchPath(route.pattern, target->path) : std::nullopt;
        if (!parts)
            continue;
        if (route.method == request.method) {
            counts = &route.counts;
            parts->resize(2);
            return route.handler({request, *target, std::move(parts->front()), std::move(parts->back())});
        }
        allowed.append(allowed.empty() ? "" : ", ").append(route.method);
    }
    if (!target || !fallback)
        throw Fault(404, "there is no such request");
    return fallback({request, *target}, allowed);
}

}  // namespace kel::server
