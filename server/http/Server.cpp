#include "server/http/Server.h"

#include <utility>
// Boost.Asio 1.74 uses what <utility> declares without including it.
#include <sys/resource.h>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/thread_pool.hpp>

#include <csignal>

#include "server/base/Log.h"
#include "server/http/Listener.h"

namespace kel::server {

namespace asio = boost::asio;

namespace {

/// A connection takes a descriptor; the usual limit for programs that never asked is 1,024.
void RaiseDescriptorLimit(std::size_t connections)
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_max < connections)
        Log(Level::Warning, "few-descriptors",
            {{"limit", std::to_string(limit.rlim_max)}, {"connections", std::to_string(connections)}});
}

}  // namespace

void Serve(const Doors& doors, Metrics& metrics, RequestHandler publicHandler, RequestHandler adminHandler,
           const PlaceOfRequest& adminPlace,
           const std::function<void(std::uint16_t, std::uint16_t)>& listening)
{
    RaiseDescriptorLimit(doors.limits.connections);
    asio::io_context context(1);
    asio::thread_pool workers(doors.workers), operators(1);  // who looks at reports keeps no visitor waiting
    const auto atWorkers = [&](const Request&) { return workers.get_executor(); };
    const auto atPlace = [&](const Request& request) -> asio::any_io_executor {
        switch (adminPlace(request)) {
            case Place::Network:
                return context.get_executor();
            case Place::Workers:
                return workers.get_executor();
            default:
                return operators.get_executor();
        }
    };
    Listener open(context, atWorkers, doors.address, doors.port, doors.limits, metrics.open,
                  std::move(publicHandler));
    Limits forOperator = doors.limits;
    forOperator.bodyBytes = doors.limits.formBytes;
    Listener admin(context, atPlace, "127.0.0.1", doors.adminPort, forOperator, metrics.admin,
                   std::move(adminHandler));

    asio::signal_set signals(context, SIGTERM, SIGINT, SIGHUP);
    signals.async_wait([&](const boost::system::error_code&, int) {
        Log(Level::Info, "stopping");
        open.Stop();
        admin.Stop();
        // The context ends when the last connection does. The next signal has its usual effect.
        signals.clear();
    });

    listening(open.Port(), admin.Port());
    context.run();
    workers.join();
    operators.join();
}

}  // namespace kel::server
