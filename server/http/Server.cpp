#include "server/http/Server.h"

#include <utility>
// Boost.Asio 1.74 uses what <utility> declares without including it.
#include <sys/resource.h>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/thread_pool.hpp>

#include <algorithm>
#include <csignal>

#include "server/base/Log.h"
#include "server/http/Listener.h"

namespace kel::server {

namespace asio = boost::asio;

namespace {

/// Each connection takes a descriptor, and the default limit of a process is 1,024.
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

/// The threads of each place except the network's.
class Threads {
public:
    explicit Threads(unsigned count)
        : readers(std::max(count / 4, 1U)), workers(count), bulk(std::max(count / 4, 1U)), operators(1)
    {
    }

    Endpoint::Place Choose(PlaceOfRequest place)
    {
        return [this, place = std::move(place)](const Request& request) -> asio::any_io_executor {
            switch (place(request)) {
                case Place::Readers:
                    return readers.get_executor();
                case Place::Workers:
                    return workers.get_executor();
                case Place::Bulk:
                    return bulk.get_executor();
                case Place::Operators:
                    return operators.get_executor();
                default:
                    return {};
            }
        };
    }

    void Join()
    {
        for (asio::thread_pool* pool : {&readers, &workers, &bulk, &operators})
            pool->join();
    }

private:
    asio::thread_pool readers, workers, bulk, operators;
};

}  // namespace

void Serve(const Endpoints& endpoints, Metrics& metrics, RequestHandler publicHandler,
           PlaceOfRequest publicPlace, RequestHandler adminHandler, PlaceOfRequest adminPlace,
           const std::function<void(std::uint16_t, std::uint16_t)>& listening)
{
    RaiseDescriptorLimit(endpoints.limits.connections);
    asio::io_context context(1);
    Threads threads(endpoints.workers);
    Limits adminLimits = endpoints.limits;
    adminLimits.bodyBytes = std::max(endpoints.limits.bodyBytes, endpoints.limits.formBytes);
    Listener open(context, threads.Choose(std::move(publicPlace)), endpoints.address, endpoints.port,
                  endpoints.limits, metrics.publicEndpoint, std::move(publicHandler));
    Listener admin(context, threads.Choose(std::move(adminPlace)), "127.0.0.1", endpoints.adminPort,
                   adminLimits, metrics.adminEndpoint, std::move(adminHandler));

    asio::signal_set signals(context, SIGTERM, SIGINT, SIGHUP);
    signals.async_wait([&](const boost::system::error_code&, int) {
        Log(Level::Info, "stopping");
        open.Stop();
        admin.Stop();
        signals.clear();  // the next signal has its usual effect
        context.stop();
    });

    listening(open.Port(), admin.Port());
    context.run();
    context.restart();
    context.run_for(endpoints.limits.stop);  // ends early when the last connection does
    open.Disconnect();
    admin.Disconnect();
    context.run();
    threads.Join();
}

}  // namespace kel::server
