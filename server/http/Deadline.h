#pragma once

#include <utility>
// Boost.Asio 1.74 uses what <utility> declares without including it.
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <chrono>
#include <memory>

namespace kel::server {

/// Ends a stream's wait after a time, and leaves the stream open: the stream's own time limit would close it,
/// and a late client could not get an answer.
class Deadline {
public:
    Deadline(boost::beast::tcp_stream& stream, std::chrono::seconds time)
        : timer(stream.get_executor(), time), isLate(std::make_shared<bool>(false))
    {
        // The handler may already be queued when this object is destroyed; the pointer shows that.
        timer.async_wait([&stream, isLate = std::weak_ptr(isLate)](const boost::system::error_code& error) {
            const auto late = isLate.lock();
            if (error || !late)
                return;
            *late = true;
            stream.cancel();
        });
    }

    bool IsLate() const { return *isLate; }

private:
    boost::asio::steady_timer timer;
    std::shared_ptr<bool> isLate;
};

}  // namespace kel::server
