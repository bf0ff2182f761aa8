#include "server/http/RequestReader.h"

#include <algorithm>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>

#include "server/base/Fault.h"
#include "server/http/HeaderCheck.h"

namespace kel::server {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using boost::system::error_code;

constexpr unsigned Http11 = 11;

}  // namespace

RequestReader::RequestReader(beast::tcp_stream& stream, beast::flat_buffer& buffer, const Limits& limits)
    : stream(stream), buffer(buffer), limits(limits), deadline(stream, limits.request)
{
    // A second limit besides the deadline, which stops no read when it passes between two of them.
    stream.expires_after(limits.request + limits.linger);
    parser.header_limit(static_cast<std::uint32_t>(limits.headerBytes));
    parser.body_limit(limits.bodyBytes);
}

asio::awaitable<int> RequestReader::Read(BodyLease& lease, Request& request)
{
    const error_code error = co_await ReadHeader();
    if (error)
        co_return ToStatus(error);
    if (const int refusal = TakeHeader(request))
        co_return refusal;
    if (Version() == Http11 && beast::iequals(parser.get()[http::field::expect], "100-continue"))
        co_await Continue();
    co_return co_await ReadBody(lease, request.body);
}

asio::awaitable<error_code> RequestReader::ReadHeader()
{
    HeaderCheck check;
    error_code error;
    for (std::size_t checked = 0; !parser.is_header_done();) {
        const auto data = buffer.data();
        const std::string_view bytes(static_cast<const char*>(data.data()), data.size());
        if (!check.Accept(bytes.substr(checked)))
            co_return http::error::bad_value;
        buffer.consume(parser.put(data, error));
        checked = buffer.size();
        if (error && error != http::error::need_more)
            co_return error;
        if (parser.is_header_done())
            break;
        if (buffer.size() == buffer.max_size())
            co_return http::error::buffer_overflow;
        const std::size_t room = std::min(Limits::Piece / 8, buffer.max_size() - buffer.size());
        const std::size_t count = co_await stream.async_read_some(
            buffer.prepare(room), asio::redirect_error(asio::use_awaitable, error));
        if (error)
            co_return error == asio::error::eof ? http::error::end_of_stream : error;
        buffer.commit(count);
    }
    co_return error_code();
}

/// Copies what the handler needs. Returns the status with which to refuse the request, or 0.
int RequestReader::TakeHeader(Request& request) const
{
    constexpr int BadRequest = 400;
    const auto& header = parser.get();
    if (!HasKnownFraming())
        return BadRequest;
    request.method = std::string(header.method_string());
    request.target = std::string(header.target());
    for (const std::string_view name : KnownHeaders) {
        const auto [first, last] = header.equal_range(beast::string_view(name.data(), name.size()));
        if (first == last)
            continue;
        if (std::next(first) != last)
            return BadRequest;  // a proxy might use the other one
        request.headers.emplace_back(name, std::string(first->value()));
    }
    return Version() == Http11 && !request.Header("Host") ? BadRequest : 0;
}

/// Whether the end of the body is certain, for this parser and for any other.
bool RequestReader::HasKnownFraming() const
{
    const auto [first, last] = parser.get().equal_range(http::field::transfer_encoding);
    if (first == last)
        return true;
    const auto value = first->value();
    return Version() == Http11 && std::next(first) == last && beast::iequals(value, "chunked");
}

asio::awaitable<int> RequestReader::ReadBody(BodyLease& lease, std::string& body)
{
    const std::size_t length = static_cast<std::size_t>(parser.content_length().value_or(0));
    body.reserve(std::min(length, 32 * Limits::Piece));  // unwritten pages take no memory
    lease.Expect(length);
    while (!parser.is_done()) {
        const std::size_t before = body.size();
        const std::size_t room = length > before ? std::min(Limits::Piece, length - before) : Limits::Piece;
        if (!lease.Resize(before + room))
            co_return Unavailable;
        body.resize(before + room);
        auto& piece = parser.get().body();
        piece.data = body.data() + before;
        piece.size = room;
        error_code error;
        co_await http::async_read(stream, buffer, parser, asio::redirect_error(asio::use_awaitable, error));
        body.resize(before + room - piece.size);
        if (error && error != http::error::need_buffer)
            co_return ToStatus(error);
    }
    lease.Resize(body.size());
    co_return 0;
}

asio::awaitable<void> RequestReader::Continue()
{
    http::response<http::empty_body> answer(http::status::continue_, Http11);
    co_await http::async_write(stream, answer, asio::use_awaitable);
}

/// The status for what is wrong with the request; 0 if the client has left.
int RequestReader::ToStatus(const error_code& error) const
{
    if (deadline.IsLate())
        return 408;
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        return 431;
    if (error == http::error::body_limit)
        return 413;
    const bool isLeaving = error == http::error::end_of_stream || error == http::error::partial_message;
    return error.category() == make_error_code(http::error::bad_method).category() && !isLeaving ? 400 : 0;
}

}  // namespace kel::server
