#include "server/http/Connection.h"

#include <array>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/chunk_encode.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/span_body.hpp>
#include <boost/beast/http/write.hpp>
#include <optional>

#include "server/http/Dispatch.h"
#include "server/http/OpenConnection.h"
#include "server/http/RequestReader.h"

namespace kel::server {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using boost::system::error_code;

class Connection {
public:
    Connection(asio::ip::tcp::socket socket, Endpoint& endpoint)
        : stream(std::move(socket)),
          buffer(endpoint.limits.headerBytes + Limits::Piece),
          endpoint(endpoint),
          place(endpoint, stream.socket())
    {
    }

    asio::awaitable<void> Serve()
    {
        // No co_await stands in a condition: GCC 12 miscompiles some.
        for (bool goesOn = true; goesOn;) {
            goesOn = co_await WaitForRequest();
            if (goesOn)
                goesOn = co_await ServeRequest();
        }
        co_await LingeringClose();
    }

private:
    /// Waits for a request; false if none begins. Waiting costs nothing but the connection.
    asio::awaitable<bool> WaitForRequest()
    {
        if (buffer.size() > 0)
            co_return true;
        if (endpoint.isClosing)
            co_return false;
        error_code error;
        const Member waiting(endpoint.idle, stream.socket());
        stream.expires_after(endpoint.limits.idle);
        const std::size_t count = co_await stream.async_read_some(
            buffer.prepare(Limits::Piece / 8), asio::redirect_error(asio::use_awaitable, error));
        buffer.commit(count);
        co_return !error && count > 0;
    }

    /// Serves one request; returns whether another may follow.
    asio::awaitable<bool> ServeRequest()
    {
        RequestReader reader(stream, buffer, endpoint.limits);
        BodyLease lease(endpoint.bodies);
        Request request;
        const int refusal = co_await reader.Read(lease, request);
        if (refusal != 0) {
            endpoint.Refuse(refusal, "a limit, or not HTTP");
            co_await Write(Answer::Empty(refusal), Reply{reader.Version()});
        }
        if (refusal != 0 || !reader.IsComplete())
            co_return false;
        const auto start = std::chrono::steady_clock::now();
        const bool isHead = request.method == "HEAD";
        const asio::any_io_executor threads = endpoint.place(request);
        Answer answer = co_await Dispatch(endpoint, std::move(request), stream.socket());
        endpoint.metrics.times.Add(std::chrono::steady_clock::now() - start);
        // The answer of a client that does not read stays in memory for a while. The answer to a large body
        // counts as large, so that it does not compete with small bodies for memory.
        if (!lease.Resize(answer.body && !answer.isShared ? answer.body->size() : 0)) {
            lease.GiveBack();
            answer = Answer::Empty(503);
            endpoint.Refuse(answer.status, "answers and bodies in progress exceed bodies_mb");
        }
        if (answer.next) {
            co_await WriteInPieces(answer, reader.Version(), threads, lease);
            co_return false;
        }
        const bool keep = reader.KeepsAlive() && !endpoint.isClosing;
        co_await Write(answer, {reader.Version(), keep, isHead});
        co_return keep;
    }

    /// How an answer is sent.
    struct Reply {
        unsigned version;
        bool keepsAlive = false;
        bool isHead = false;  // send only the answer's header
    };

    asio::awaitable<void> Write(const Answer& answer, Reply reply)
    {
        http::response<http::span_body<const char>> message;
        message.result(static_cast<unsigned>(answer.status));
        message.version(reply.version);
        message.set(http::field::cache_control, "no-store");
        for (const auto& [name, value] : answer.headers)
            message.insert(name, value);
        if (answer.body)
            message.set(http::field::content_type, answer.contentType);
        std::string_view rest = answer.Sent();
        if (message.result() != http::status::no_content)
            message.content_length(rest.size());
        if (reply.isHead)
            rest = {};
        // A body that exists anyway may take longer than others, but each piece of it has the time of one.
        const std::size_t maxPiece = answer.isShared ? Limits::SentPiece : Answer::Everything;
        std::string_view piece = rest.substr(0, maxPiece);
        message.body() = {piece.data(), piece.size()};
        message.keep_alive(reply.keepsAlive);
        stream.expires_after(endpoint.limits.answer);
        co_await http::async_write(stream, message, asio::use_awaitable);
        for (rest.remove_prefix(piece.size()); !rest.empty(); rest.remove_prefix(piece.size())) {
            piece = rest.substr(0, maxPiece);
            stream.expires_after(endpoint.limits.answer);
            co_await asio::async_write(stream, asio::buffer(piece), asio::use_awaitable);
        }
    }

    /// Sends an answer whose length is not known before. The connection ends with it; when a piece cannot be
    /// made, it ends without the last chunk, from which the client sees that the rest is missing.
    asio::awaitable<void> WriteInPieces(const Answer& answer, unsigned version, asio::any_io_executor threads,
                                        BodyLease& lease)
    {
        http::response<http::empty_body> message;
        message.result(static_cast<unsigned>(answer.status));
        message.version(version);
        message.set(http::field::cache_control, "no-store");
        for (const auto& [name, value] : answer.headers)
            message.insert(name, value);
        message.set(http::field::content_type, answer.contentType);
        const bool isChunked = version >= 11;  // otherwise the end of the connection is the end of the answer
        message.chunked(isChunked);
        message.keep_alive(false);
        http::response_serializer<http::empty_body> serializer(message);
        stream.expires_after(endpoint.limits.answer);
        co_await http::async_write_header(stream, serializer, asio::use_awaitable);
        for (;;) {
            // The threads take their time, which is not the client's.
            stream.expires_never();
            const std::optional<std::string> piece = co_await MakePiece(threads, answer);
            if (!piece)
                break;
            if (piece->empty())
                continue;
            if (!lease.Resize(piece->size())) {
                endpoint.Refuse(503, "answers and bodies in progress exceed bodies_mb");
                co_return;
            }
            stream.expires_after(endpoint.limits.answer);
            if (isChunked)
                co_await asio::async_write(stream, http::make_chunk(asio::buffer(*piece)),
                                           asio::use_awaitable);
            else
                co_await asio::async_write(stream, asio::buffer(*piece), asio::use_awaitable);
        }
        stream.expires_after(endpoint.limits.answer);
        if (isChunked)
            co_await asio::async_write(stream, http::make_chunk_last(), asio::use_awaitable);
    }

    /// Continues to read for a moment: closing with unread bytes would reset the connection, and a client
    /// that still sends would lose the answer.
    asio::awaitable<void> LingeringClose()
    {
        error_code error;
        stream.socket().shutdown(asio::socket_base::shutdown_send, error);
        stream.expires_after(endpoint.limits.linger);
        std::array<char, Limits::Piece> piece;
        while (!error)
            co_await stream.async_read_some(asio::buffer(piece),
                                            asio::redirect_error(asio::use_awaitable, error));
    }

    beast::tcp_stream stream;
    beast::flat_buffer buffer;  // bounded: chunk extensions and trailers have no other limit
    Endpoint& endpoint;
    const OpenConnection place;
};

}  // namespace

asio::awaitable<void> ServeConnection(asio::ip::tcp::socket socket, Endpoint& endpoint)
{
    if (endpoint.open.size() >= endpoint.limits.connections) {
        ++endpoint.metrics.turnedAway;
        co_return;
    }
    Connection connection(std::move(socket), endpoint);
    co_await connection.Serve();
}

}  // namespace kel::server
