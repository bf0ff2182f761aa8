#pragma once

#include <utility>
// Boost.Asio 1.74 uses what <utility> declares without including it.
#include <boost/asio/awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/parser.hpp>

#include "server/base/Exchange.h"
#include "server/http/BodyBudget.h"
#include "server/http/Deadline.h"
#include "server/http/Limits.h"

namespace kel::server {

/// Reads one request from a connection, within the limits.
class RequestReader {
public:
    /// `buffer` holds bytes that were received but not yet read; those after the request stay in it.
    RequestReader(boost::beast::tcp_stream& stream, boost::beast::flat_buffer& buffer, const Limits& limits);

    /// Reads the request; its body takes the lease's memory. Returns the status with which to refuse it, or 0
    /// when it is complete or the client has left.
    boost::asio::awaitable<int> Read(BodyLease& lease, Request& request);
    bool IsComplete() const { return parser.is_done(); }
    /// Whether the client expects another request to follow.
    bool KeepsAlive() const { return parser.get().keep_alive(); }
    /// 10 or 11, for HTTP/1.0 and HTTP/1.1.
    unsigned Version() const { return parser.get().version(); }

private:
    boost::asio::awaitable<boost::system::error_code> ReadHeader();
    boost::asio::awaitable<int> ReadBody(BodyLease& lease, std::string& body);
    boost::asio::awaitable<void> Continue();
    int TakeHeader(Request& request) const;
    bool HasKnownFraming() const;
    int ToStatus(const boost::system::error_code& error) const;

    boost::beast::tcp_stream& stream;
    boost::beast::flat_buffer& buffer;
    const Limits& limits;
    boost::beast::http::request_parser<boost::beast::http::buffer_body> parser;
    Deadline deadline;
};

}  // namespace kel::server
