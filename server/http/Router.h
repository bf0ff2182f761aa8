#pragma once

#include <functional>
#include <string>
#include <vector>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/http/Target.h"

namespace kel::server {

/// Finds what answers a request, and turns every failure into a status without a body and a line in the log.
class Router {
public:
    /// Gets the target, what stands behind the route's path, and the body. Throws Fault.
    using Handler = std::function<Answer(const Target&, const std::string& rest, const std::string& body)>;

    /// Counts every answer there.
    explicit Router(DoorMetrics& metrics) : metrics(metrics) {}

    /// Requests of this method for this path. One that ends with an asterisk answers for every path that
    /// begins so.
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
