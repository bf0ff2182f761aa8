#include "server/http/Listener.h"

#include <fmt/format.h>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <stdexcept>

#include "server/base/Log.h"
#include "server/http/Connection.h"

namespace kel::server {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

constexpr std::chrono::milliseconds Pause{
    100};  // after an accept that failed: the process has no descriptor left

tcp::acceptor Listen(asio::io_context& context, const std::string& address, std::uint16_t port)
{
    try {
        return {context, {asio::ip::make_address(address), port}};
    } catch (const std::exception& error) {
        throw std::runtime_error(
            fmt::format("cannot listen at {}, port {}: {}", address, port, error.what()));
    }
}

/// A client that leaves is normal; anything else that ends a connection is an error.
void Report(const std::exception_ptr& end)
{
    try {
        if (end)
            std::rethrow_exception(end);
    } catch (const boost::system::system_error& error) {
        Log(Level::Debug, "left", {{"reason", error.what()}});
    } catch (const std::exception& error) {
        Log(Level::Error, "failed", {{"reason", error.what()}});
    }
}

}  // namespace

Listener::Listener(asio::io_context& context, Endpoint::Place place, const std::string& address,
                   std::uint16_t port, const Limits& limits, EndpointMetrics& metrics,
                   Endpoint::Handler handler)
    : context(context),
      acceptor(Listen(context, address, port)),
      endpoint(std::move(handler), limits, std::move(place), metrics)
{
    asio::co_spawn(context, Accept(), Report);
}

asio::awaitable<void> Listener::Accept()
{
    while (!endpoint.isClosing) {
        error_code error;
        tcp::socket socket = co_await acceptor.async_accept(asio::redirect_error(asio::use_awaitable, error));
        if (!error) {
            asio::co_spawn(context, ServeConnection(std::move(socket), endpoint), Report);
        } else if (!endpoint.isClosing) {
            Log(Level::Warning, "not-accepted", {{"reason", error.message()}});
            asio::steady_timer timer(context, Pause);
            co_await timer.async_wait(asio::use_awaitable);
        }
    }
}

void Listener::Stop()
{
    endpoint.isClosing = true;
    error_code ignored;
    acceptor.close(ignored);
    for (tcp::socket* socket :
         endpoint.idle)  // a request that has arrived but is not read yet is still answered
        socket->shutdown(asio::socket_base::shutdown_receive, ignored);
}

void Listener::Disconnect()
{
    error_code ignored;
    for (tcp::socket* socket : endpoint.open)
        socket->close(ignored);
    for (asio::steady_timer* timer : endpoint.queued)
        timer->cancel();
}

}  // namespace kel::server
