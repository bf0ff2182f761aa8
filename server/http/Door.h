#pragma once

#include <utility>
// Boost.Asio 1.74 uses what <utility> declares without including it.
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <functional>
#include <unordered_set>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/http/Limits.h"

namespace kel::server {

/// What the connections of one listener share. The network's thread alone changes it; the handler
/// runs at the request's place.
struct Door {
    using Handler = std::function<Answer(const Request&)>;
    using Place = std::function<boost::asio::any_io_executor(const Request&)>;

    Handler handler;
    Limits limits;
    Place place;  // where the handler works on a request
    DoorMetrics& metrics;
    std::unordered_set<boost::asio::ip::tcp::socket*> idle = {};  // those that wait for a request
    bool isClosing = false;
};

}  // namespace kel::server
