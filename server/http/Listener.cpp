#include "server/http/Listener.h"

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
        throw std::runtime_error("cannot listen at " + address + ", port " + std::to_string(port) + ": " +
                                 error.what());
    }
}

/// A client that is gone is no event; anything else that ends a connection is.
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

Listener::Listener(asio::io_context& context, Door::Place place, const std::string& address,
                   std::uint16_t port, const Limits& limits, DoorMetrics& metrics, Door::Handler handler)
    : context(context),
      acceptor(Listen(context, address, port)),
      door(std::move(handler), limits, std::move(place), metrics)
{
    asio::co_spawn(context, Accept(), Report);
}

asio::awaitable<void> Listener::Accept()
{
    while (!door.isClosing) {
        error_code error;
        tcp::socket socket = co_await acceptor.async_accept(asio::redirect_error(asio::use_awaitable, error));
        if (!error) {
            asio::co_spawn(context, ServeConnection(std::move(socket), door), Report);
        } else if (!door.isClosing) {
            Log(Level::Warning, "not-accepted", {{"reason", error.message()}});
            asio::steady_timer timer(context, Pause);
            co_await timer.async_wait(asio::use_awaitable);
        }
    }
}

void Listener::Stop()
{
    door.isClosing = true;
    error_code ignored;
    acceptor.close(ignored);
    for (tcp::socket* socket :
         door.idle)  // a request that has arrived, though not been read, is still answered
        socket->shutdown(asio::socket_base::shutdown_receive, ignored);
}

void Listener::Disconnect()
{
    error_code ignored;
    for (tcp::socket* socket : door.open)
        socket->close(ignored);
    for (asio::steady_timer* timer : door.queued)
        timer->cancel();
}

}  // namespace kel::server
