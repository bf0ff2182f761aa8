#include "server/http/Router.h"

#include "server/base/Fault.h"
#include "server/base/Log.h"

namespace kel::server {

void Router::Add(std::string method, std::string path, Handler handler)
{
    StatusCounts& counts = metrics.AddRoute(method, path);
    const bool isPrefix = path.ends_with('*');
    if (isPrefix)
        path.pop_back();
    routes.push_back({std::move(method), std::move(path), isPrefix, std::move(handler), counts});
}

Answer Router::Handle(const Request& request) const noexcept
{
    StatusCounts* counts = &metrics.unrouted;
    Answer answer = Try(request, counts);
    counts->Add(answer.status);
    if (answer.status == NoRoom::Code)
        answer.status = 503;  // what a client knows
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
    for (const Route& route : routes) {
        if (target && route.method == request.method &&
            (route.isPrefix ? target->path.starts_with(route.path) : target->path == route.path)) {
            counts = &route.counts;
            return route.handler({request, *target, target->path.substr(route.path.size())});
        }
    }
    throw Fault(404, "there is no such request");
}

}  // namespace kel::server
