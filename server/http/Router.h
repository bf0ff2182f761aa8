#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/http/Target.h"

namespace kel::server {

/// A request whose target has been parsed.
struct Call {
    const Request& request;
    const Target& target;
    std::string subject = {};  // the part of the path that the route's first star stands for
    std::string detail = {};   // the same of its second star
};

/// The parts of the path that the pattern's stars stand for, each a whole part between slashes and not empty.
/// Nothing when the path does not match.
std::optional<std::vector<std::string>> MatchPath(std::string_view pattern, std::string_view path);

/// Finds the handler of a request, and turns every failure into a status without a body and a line in the
/// log.
class Router {
public:
    /// Throws Fault.
    using Handler = std::function<Answer(const Call&)>;
    /// Answers a request that has no route. `allowed` is the value of the header Allow: the methods that the
    /// path has, empty for an unknown path. Throws Fault.
    using Fallback = std::function<Answer(const Call&, const std::string& allowed)>;
    /// Makes the answer to a request that failed. Does not throw.
    using Failure = std::function<Answer(const Request&, int status)>;

    /// Counts every answer in `metrics`.
    explicit Router(EndpointMetrics& metrics) : metrics(metrics) {}

    /// Adds a handler for requests of this method whose path matches the pattern; the first route that
    /// matches counts.
    void Add(std::string_view method, std::string_view pattern, Handler handler);
    /// Without one, a request that has no route gets 404.
    void SetFallback(Fallback newFallback) { fallback = std::move(newFallback); }
    /// Without one, a request that failed gets its status alone.
    void SetFailure(Failure newFailure) { failure = std::move(newFailure); }

    /// Never throws: answers a Fault with its status, and every other exception with 500.
    Answer Handle(const Request& request) const noexcept;

private:
    struct Route {
        std::string method, pattern;
        Handler handler;
        StatusCounts& counts;
    };

    Answer Try(const Request& request, StatusCounts*& counts) const noexcept;
    Answer Find(const Request& request, StatusCounts*& counts) const;
    Answer Fail(const Request& request, int status) const;

    EndpointMetrics& metrics;
    std::vector<Route> routes;
    Fallback fallback;
    Failure failure;
};

}  // namespace kel::server
