#pragma once

#include <functional>
#include <string>
#include <vector>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/http/Target.h"

namespace kel::server {

/// A request whose route was found.
struct Call {
    const Request& request;
    const Target& target;
    std::string rest;  // what stands behind the route's path
};

/// Finds what answers a request, and turns every failure into a status without a body and a line in the log.
class Router {
public:
    /// Throws Fault.
    using Handler = std::function<Answer(const Call&)>;

    /// Counts every answer there.
    explicit Router(DoorMetrics& metrics) : metrics(metrics) {}

    /// Requests of this method for this path. One that ends with an asterisk answers for every path that
    /// begins so; the first route that fits counts.
    void Add(std::string method, std::string path, Handler handler);

    /// Never throws. 404 when there is no such route, the status of a Fault, 500 for every other exception.
    Answer Handle(const Request& request) const noexcept;

private:
    struct Route {
        std::string method, path;
        bool isPrefix;
        Handler handler;
        StatusCounts& counts;
    };

    Answer Try(const Request& request, StatusCounts*& counts) const noexcept;
    Answer Find(const Request& request, StatusCounts*& counts) const;

    DoorMetrics& metrics;
    std::vector<Route> routes;
};

}  // namespace kel::server
