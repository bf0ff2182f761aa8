#pragma once

#include <utility>
// Boost.Asio 1.74 uses what <utility> declares without including it.
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <unordered_set>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/http/BodyBudget.h"
#include "server/http/Limits.h"

namespace kel::server {

/// What the connections of one listener share. Only the network thread changes it; the handler runs on the
/// threads of the request's place.
struct Endpoint {
    using Handler = std::function<Answer(const Request&)>;
    /// An executor of other threads; an empty one stands for the network thread.
    using Place = std::function<boost::asio::any_io_executor(const Request&)>;
    using Sockets = std::unordered_set<boost::asio::ip::tcp::socket*>;

    Endpoint(Handler handler, const Limits& limits, Place place, EndpointMetrics& metrics)
        : handler(std::move(handler)),
          limits(limits),
          place(std::move(place)),
          metrics(metrics),
          bodies(limits.bodiesBytes, metrics.bodiesBytes)
    {
    }

    /// Counts and logs a request that the handler does not answer.
    void Refuse(int status, const char* reason);

    Handler handler;
    Limits limits;
    Place place;  // where the handler works on a request
    EndpointMetrics& metrics;
    BodyBudget bodies;
    Sockets open, idle;                                     // all connections; those that wait for a request
    std::unordered_set<boost::asio::steady_timer*> queued;  // of requests until they are answered
    bool isClosing = false;
};

}  // namespace kel::server
