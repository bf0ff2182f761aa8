#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

namespace kel::server {

/// A number that any thread may change.
using Count = std::atomic<std::uint64_t>;

/// How many requests were answered with each status.
class StatusCounts {
public:
    static constexpr int Min = 100, Max = 599;

    void Add(int status) { ++counts.at(static_cast<std::size_t>(status - Min)); }
    std::uint64_t Of(int status) const { return counts.at(static_cast<std::size_t>(status - Min)); }

private:
    std::array<Count, Max - Min + 1> counts = {};
};

/// How many times were so long at most.
class Histogram {
public:
    /// In seconds; one more place is for what took longer.
    static constexpr std::array Bounds{0.001, 0.0025, 0.005, 0.01, 0.025, 0.05, 0.1,
                                       0.25,  0.5,    1.0,   2.5,  5.0,   10.0};

    void Add(std::chrono::steady_clock::duration time);
    /// Those that a bound is the first to hold, by its place.
    std::uint64_t At(std::size_t place) const { return counts.at(place); }
    /// In seconds.
    double Sum() const { return static_cast<double>(nanoseconds) / 1e9; }

private:
    std::array<Count, Bounds.size() + 1> counts = {};
    Count nanoseconds = 0;
};

/// What one endpoint counts. Its labels are the program's own words: no text of a client becomes one.
struct EndpointMetrics {
    struct Route {
        std::string method, pattern;
        StatusCounts counts;
    };

    explicit EndpointMetrics(std::string name) : name(std::move(name)) {}

    /// A route's counts, which stay where they are. For the time before there are threads.
    StatusCounts& AddRoute(std::string_view method, std::string_view pattern);

    std::string name;
    Count connections = 0;  // that are open
    Count turnedAway = 0;   // connections past what the endpoint allows
    Count bodiesBytes = 0;  // of the requests and answers under way
    StatusCounts refused;   // requests that were not read to their end, or whose answer was too large
    Histogram times;        // from a request's last byte until its answer is known
    std::deque<Route> routes;
    StatusCounts& unrouted = AddRoute("other", "other");
};

/// What the service has counted since it started.
struct Metrics {
    static constexpr std::array Totals{"pass", "fail", "unknown"};

    /// Counts a verdict by the name of its total.
    void AddVerdict(const std::string& total);

    EndpointMetrics publicEndpoint{"public"}, adminEndpoint{"admin"};
    Count uploads = 0;
    Count replacedCharacters = 0;  // of reports and requests, which XML does not allow
    std::array<Count, Totals.size()> verdicts = {};
    Count verdictsNotKept = 0;  // answered, and not stored
    std::chrono::system_clock::time_point start = std::chrono::system_clock::now();
};

}  // namespace kel::server
