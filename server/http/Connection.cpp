#include "server/http/Connection.h"

#include <array>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/span_body.hpp>
#include <boost/beast/http/write.hpp>

#include "server/base/Log.h"
#include "server/http/Deadline.h"
#include "server/http/Places.h"

namespace kel::server {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using boost::system::error_code;
using Parser = http::request_parser<http::buffer_body>;

constexpr std::size_t PieceBytes = 8 * Limits::Kilobyte;

/// The status that tells a client what is wrong with its request; 0 when there is nobody to tell.
int StatusOf(const error_code& error)
{
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        return 431;
    if (error == http::error::body_limit)
        return 413;
    const bool isLeaving = error == http::error::end_of_stream || error == http::error::partial_message;
    return error.category() == make_error_code(http::error::bad_method).category() && !isLeaving ? 400 : 0;
}

asio::awaitable<Answer> Run(const Door::Handler& handler, const Request& request)
{
    co_return handler(request);
}

class Connection {
public:
    Connection(asio::ip::tcp::socket socket, Door& door)
        : stream(std::move(socket)), buffer(door.limits.headerBytes + PieceBytes), door(door)
    {
    }

    asio::awaitable<void> Serve()
    {
        // No co_await stands in a condition: GCC 12 makes wrong code of some.
        for (bool goesOn = true; goesOn;) {
            goesOn = co_await WaitForRequest();
            if (goesOn)
                goesOn = co_await ServeRequest();
        }
        co_await TakeLeave();
    }

private:
    /// Whether a request begins. Waiting for one costs nothing but the connection.
    asio::awaitable<bool> WaitForRequest()
    {
        if (buffer.size() > 0)
            co_return true;
        if (door.isClosing)
            co_return false;
        error_code error;
        const Waiting waiting(door, stream.socket());
        stream.expires_after(door.limits.idle);
        const std::size_t count = co_await stream.async_read_some(
            buffer.prepare(PieceBytes / 8), asio::redirect_error(asio::use_awaitable, error));
        buffer.commit(count);
        co_return !error && count > 0;
    }

    /// Whether another request may follow.
    asio::awaitable<bool> ServeRequest()
    {
        Parser parser;
        Share share(door.metrics.bodiesBytes);
        Request request;
        const int refusal = co_await Read(parser, share, request);
        if (refusal != 0) {
            Refuse(refusal, "a limit, or no HTTP");
            co_await Write(Answer::Empty(refusal), parser.get().version(), false);
        }
        if (refusal != 0 || !parser.is_done())
            co_return false;
        const auto start = std::chrono::steady_clock::now();
        Answer answer =
            co_await asio::co_spawn(door.place(request), Run(door.handler, request), asio::use_awaitable);
        door.metrics.times.Add(std::chrono::steady_clock::now() - start);
        request = {};
        share.GiveBack();
        // A client that reads nothing keeps its answer for a while.
        if (answer.body && !answer.isShared && !share.Take(answer.body->size(), door.limits.bodiesBytes)) {
            answer = Answer::Empty(503);
            Refuse(answer.status, "the answers and bodies under way are too large together");
        }
        const bool keep = parser.get().keep_alive() && !door.isClosing;
        co_await Write(answer, parser.get().version(), keep);
        co_return keep;
    }

    void Refuse(int status, const char* reason)
    {
        door.metrics.refused.Add(status);
        Log(Level::Warning, "refused", {{"status", std::to_string(status)}, {"reason", reason}});
    }

    /// Reads a request. The status to refuse it with, or 0; it may have ended early then.
    asio::awaitable<int> Read(Parser& parser, Share& share, Request& request)
    {
        // Both: a deadline that passes between two reads stops neither.
        stream.expires_after(door.limits.request + door.limits.farewell);
        const Deadline deadline(stream, door.limits.request);
        parser.header_limit(static_cast<std::uint32_t>(door.limits.headerBytes));
        parser.body_limit(door.limits.bodyBytes);
        error_code error;
        co_await http::async_read_header(stream, buffer, parser,
                                         asio::redirect_error(asio::use_awaitable, error));
        if (error)
            co_return deadline.IsLate() ? 408 : StatusOf(error);
        if (beast::iequals(parser.get()[http::field::expect], "100-continue"))
            co_await Continue(parser.get().version());
        std::array<char, PieceBytes> piece;
        while (!parser.is_done()) {
            auto& body = parser.get().body();
            body.data = piece.data();
            body.size = piece.size();
            co_await http::async_read(stream, buffer, parser,
                                      asio::redirect_error(asio::use_awaitable, error));
            if (error && error != http::error::need_buffer)
                co_return deadline.IsLate() ? 408 : StatusOf(error);
            const std::size_t count = piece.size() - body.size;
            if (!share.Take(count, door.limits.bodiesBytes))
                co_return 503;
            request.body.append(piece.data(), count);
        }
        request.method = std::string(parser.get().method_string());
        request.target = std::string(parser.get().target());
        for (const std::string_view name : KnownHeaders) {
            const auto [first, last] = parser.get().equal_range(beast::string_view(name.data(), name.size()));
            if (first == last)
                continue;
            if (std::next(first) != last)
                co_return 400;  // who else reads the request may go by the other one
            request.headers.emplace_back(name, std::string(first->value()));
        }
        co_return 0;
    }

    asio::awaitable<void> Continue(unsigned version)
    {
        http::response<http::empty_body> answer(http::status::continue_, version);
        co_await http::async_write(stream, answer, asio::use_awaitable);
    }

    asio::awaitable<void> Write(const Answer& answer, unsigned version, bool keep)
    {
        http::response<http::span_body<const char>> message;
        message.result(static_cast<unsigned>(answer.status));
        message.version(version);
        message.set(http::field::cache_control, "no-store");
        for (const auto& [name, value] : answer.headers)
            message.insert(name, value);
        if (answer.body) {
            message.set(http::field::content_type, answer.contentType);
            message.body() = {answer.body->data(), answer.body->size()};
        }
        message.keep_alive(keep);
        message.prepare_payload();
        message.content_length(message.body().size());
        stream.expires_after(door.limits.answer);
        co_await http::async_write(stream, message, asio::use_awaitable);
    }

    /// Reads on for a moment: closing with bytes unread would take the answer back from a client that still
    /// sends.
    asio::awaitable<void> TakeLeave()
    {
        error_code error;
        stream.socket().shutdown(asio::socket_base::shutdown_send, error);
        stream.expires_after(door.limits.farewell);
        std::array<char, PieceBytes> piece;
        while (!error)
            co_await stream.async_read_some(asio::buffer(piece),
                                            asio::redirect_error(asio::use_awaitable, error));
    }

    beast::tcp_stream stream;
    beast::flat_buffer buffer;  // bounded: chunks' extensions and trailers have no other limit
    Door& door;
};

}  // namespace

asio::awaitable<void> ServeConnection(asio::ip::tcp::socket socket, Door& door)
{
    Share place(door.metrics.connections);
    if (!place.Take(1, door.limits.connections)) {
        ++door.metrics.turnedAway;
        co_return;
    }
    Connection connection(std::move(socket), door);
    co_await connection.Serve();
}

}  // namespace kel::server
