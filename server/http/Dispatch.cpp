#include "server/http/Dispatch.h"

#include <poll.h>

#include <atomic>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <exception>

#include "server/base/Fault.h"
#include "server/http/OpenConnection.h"

namespace kel::server {

namespace {

namespace asio = boost::asio;
using Clock = std::chrono::steady_clock;

/// A request in a queue. Either a thread works on it or the connection gives it up, whichever claims it
/// first.
struct Task {
    explicit Task(Request request) : request(std::move(request)) {}

    bool Claim() { return !isClaimed.exchange(true); }

    Request request;
    Answer answer;
    bool hasClientLeft = false;
    bool isDone = false;  // only for the network thread
    asio::steady_timer* done = nullptr;

private:
    std::atomic<bool> isClaimed = false;
};

/// A piece of an answer that is being made.
struct PieceWork {
    std::optional<std::string> piece;
    std::exception_ptr failure;
    bool isDone = false;  // only for the network thread
};

/// Whether the client has closed the connection, or at least its own side of it.
bool HasClosed(int socket)
{
    pollfd state{socket, POLLRDHUP, 0};
    return poll(&state, 1, 0) > 0;
}

}  // namespace

asio::awaitable<Answer> Dispatch(Endpoint& endpoint, Request request, asio::ip::tcp::socket& socket)
{
    const asio::any_io_executor place = endpoint.place(request);
    if (!place)
        co_return endpoint.handler(request);
    const asio::any_io_executor network = co_await asio::this_coro::executor;
    const Clock::time_point start = Clock::now();
    const auto task = std::make_shared<Task>(std::move(request));
    asio::steady_timer done(network, endpoint.limits.queue);
    task->done = &done;
    const Member queued(endpoint.queued, done);
    asio::post(place, [&endpoint, task, network, start, handle = socket.native_handle()] {
        if (!task->Claim())
            return;
        // A client may close its side and still read the answer, so a request that has not waited is served.
        task->hasClientLeft = Clock::now() - start > endpoint.limits.absent && HasClosed(handle);
        if (!task->hasClientLeft)
            task->answer = endpoint.handler(task->request);
        asio::post(network, [task] {
            task->isDone = true;
            task->done->cancel();
        });
    });
    boost::system::error_code cancelled;
    co_await done.async_wait(asio::redirect_error(asio::use_awaitable, cancelled));
    if (!task->isDone && task->Claim()) {
        task->request = {};  // the queue keeps the task for a while
        endpoint.Refuse(Unavailable, "it waited too long for a thread");
        co_return Answer::Empty(Unavailable);
    }
    done.expires_at(Clock::time_point::max());
    while (!task->isDone)
        co_await done.async_wait(asio::redirect_error(asio::use_awaitable, cancelled));
    if (task->hasClientLeft) {
        endpoint.Refuse(Unavailable, "its client has left");
        co_return Answer::Empty(Unavailable);
    }
    co_return std::move(task->answer);
}

asio::awaitable<std::optional<std::string>> MakePiece(const asio::any_io_executor& place,
                                                      const Answer& answer)
{
    const asio::any_io_executor network = co_await asio::this_coro::executor;
    const auto work = std::make_shared<PieceWork>();
    asio::steady_timer done(network, Clock::time_point::max());
    asio::post(place, [&answer, &done, work, network] {
        try {
            work->piece = answer.next();
        } catch (...) {
            work->failure = std::current_exception();
        }
        asio::post(network, [&done, work] {
            work->isDone = true;
            done.cancel();
        });
    });
    boost::system::error_code cancelled;
    while (!work->isDone)
        co_await done.async_wait(asio::redirect_error(asio::use_awaitable, cancelled));
    if (work->failure)
        std::rethrow_exception(work->failure);
    co_return std::move(work->piece);
}

}  // namespace kel::server
