#include "server/http/Router.h"

#include "server/base/Fault.h"
#include "server/base/Log.h"

namespace kel::server {

std::optional<std::string> MatchPath(std::string_view pattern, std::string_view path)
{
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos)
        return path == pattern ? std::optional<std::string>("") : std::nullopt;
    const std::string_view before = pattern.substr(0, star), after = pattern.substr(star + 1);
    if (path.size() <= before.size() + after.size() || !path.starts_with(before) || !path.ends_with(after))
        return std::nullopt;
    const std::string_view subject = path.substr(star, path.size() - before.size() - after.size());
    return subject.find('/') == std::string_view::npos ? std::optional(std::string(subject)) : std::nullopt;
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
             {"target", request.target},
             {"reason", fault.what()}});
        return Answer::Empty(fault.Status());
    } catch (const std::exception& error) {
        Log(Level::Error, "failed", {{"target", request.target}, {"reason", error.what()}});
        return Answer::Empty(500);
    }
}

Answer Router::Find(const Request& request, StatusCounts*& counts) const
{
    const auto target = Target::Read(request.target);
    std::string allowed;
    for (const Route& route : routes) {
        auto subject = target ? MatchPath(route.pattern, target->path) : std::nullopt;
        if (!subject)
            continue;
        if (route.method == request.method) {
            counts = &route.counts;
            return route.handler({request, *target, *std::move(subject)});
        }
        allowed.append(allowed.empty() ? "" : ", ").append(route.method);
    }
    if (!target || !fallback)
        throw Fault(404, "there is no such request");
    return fallback({request, *target}, allowed);
}

}  // namespace kel::server
