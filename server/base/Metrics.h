#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

#include "server/base/CheckSteps.h"
#include "verdict/Result.h"

namespace kel::server {

/// A number that any thread may change.
using Count = std::atomic<std::uint64_t>;

/// The number of requests that were answered with each status.
class StatusCounts {
public:
    static constexpr int Min = 100, Max = 599;

    void Add(int status) { ++counts.at(static_cast<std::size_t>(status - Min)); }
    std::uint64_t Of(int status) const { return counts.at(static_cast<std::size_t>(status - Min)); }

private:
    std::array<Count, Max - Min + 1> counts = {};
};

/// The number of durations in each of several ranges.
class Histogram {
public:
    /// In seconds; one more place counts what took longer.
    static constexpr std::array Bounds{0.001, 0.0025, 0.005, 0.01, 0.025, 0.05, 0.1,
                                       0.25,  0.5,    1.0,   2.5,  5.0,   10.0};

    void Add(std::chrono::steady_clock::duration time);
    /// The number of durations above the previous bound and up to this one, by its place.
    std::uint64_t At(std::size_t place) const { return counts.at(place); }
    /// In seconds.
    double Sum() const { return static_cast<double>(nanoseconds) / 1e9; }

private:
    std::array<Count, Bounds.size() + 1> counts = {};
    Count nanoseconds = 0;
};

/// The counters of one endpoint. Their labels are the program's own words: no text of a client becomes one.
struct EndpointMetrics {
    struct Route {
        std::string method, pattern;
        StatusCounts counts;
    };

    explicit EndpointMetrics(std::string name) : name(std::move(name)) {}

    /// Adds a route's counts, whose address never changes. Call this only before there are threads.
    StatusCounts& AddRoute(std::string_view method, std::string_view pattern);

    std::string name;
    Count connections = 0;  // open ones
    Count turnedAway = 0;   // connections beyond the limit of the endpoint
    Count bodiesBytes = 0;  // of the requests and answers in progress
    StatusCounts refused;   // requests that were not read to their end, or whose answer was too large
    Histogram times;        // from a request's last byte until its answer is ready
    std::deque<Route> routes;
    StatusCounts& unrouted = AddRoute("other", "other");
};

/// What the service has counted since it started.
struct Metrics {
    static constexpr std::array Totals{Result::Pass, Result::Fail, Result::Unknown};

    /// Counts a verdict by its total.
    void AddVerdict(Result total);

    EndpointMetrics publicEndpoint{"public"}, adminEndpoint{"admin"};
    Count uploads = 0;
    Count uploadsWithoutSession = 0;                       // refused
    Count unknownInGroupLists = 0, unknownInAnalyses = 0;  // requests for a product without requirements
    Count replacedCharacters = 0;  // in reports and requests, because XML does not allow them
    std::array<Count, Totals.size()> verdicts = {};
    Count verdictsNotKept = 0;  // answered, and not stored
    Count downloads = 0;        // of the program for visitors, from its first byte
    Count activeDownloads = 0;
    CheckSteps checks;
    std::chrono::system_clock::time_point start = std::chrono::system_clock::now();
};

}  // namespace kel::server
