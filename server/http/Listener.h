#pragma once

#include <utility>
// Boost.Asio 1.74 uses what <utility> declares without including it.
#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <string>

#include "server/http/Endpoint.h"

namespace kel::server {

/// Accepts connections at one address until it is stopped.
class Listener {
public:
    /// Listens at once. Port 0 picks a free one. Throws std::runtime_error when that fails.
    Listener(boost::asio::io_context& context, Endpoint::Place place, const std::string& address,
             std::uint16_t port, const Limits& limits, EndpointMetrics& metrics, Endpoint::Handler handler);

    std::uint16_t Port() const { return acceptor.local_endpoint().port(); }
    /// Accepts no more connections, and closes those that wait for a request.
    void Stop();
    /// Closes all connections, whatever they do, and drops the requests that no thread works on yet.
    void Disconnect();

private:
    boost::asio::awaitable<void> Accept();

    boost::asio::io_context& context;
    boost::asio::ip::tcp::acceptor acceptor;
    Endpoint endpoint;
};

}  // namespace kel::server
