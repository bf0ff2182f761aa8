#pragma once

#include <utility>
// Boost.Asio 1.74 uses what <utility> declares without including it.
#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <optional>
#include <string>

#include "server/http/Endpoint.h"

namespace kel::server {

/// Passes a request to the handler on the threads of its place. Answers 503, and the handler never sees the
/// request, if it waits too long for a thread, or if its client closed the connection and no thread was free
/// at once. For a coroutine of the network thread; the socket stays open meanwhile.
boost::asio::awaitable<Answer> Dispatch(Endpoint& endpoint, Request request,
                                        boost::asio::ip::tcp::socket& socket);

/// The next piece of an answer that is made in pieces, by a thread of that place. Nothing after the last one.
/// Throws when the piece cannot be made.
boost::asio::awaitable<std::optional<std::string>> MakePiece(const boost::asio::any_io_executor& place,
                                                             const Answer& answer);

}  // namespace kel::server
