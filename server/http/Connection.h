#pragma once

#include <utility>
// Boost.Asio 1.74 uses what <utility> declares without including it.
#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>

#include "server/http/Endpoint.h"

namespace kel::server {

/// Serves a client's requests one after the other until it leaves or exceeds a limit, or the endpoint closes;
/// in that case the current request is answered first. Throws boost::system::system_error when the client is
/// gone.
boost::asio::awaitable<void> ServeConnection(boost::asio::ip::tcp::socket socket, Endpoint& endpoint);

}  // namespace kel::server
