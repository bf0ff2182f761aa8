#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/http/Limits.h"

namespace kel::server {

/// The threads that work on a request. Cheap requests never wait for expensive ones.
enum class Place {
    Network,    // the network thread, for requests that take no time
    Readers,    // for short database queries
    Workers,    // for reports and verdicts
    Bulk,       // for large bodies, few at the same time
    Operators,  // one thread, for the administration
};

/// The addresses at which the service listens, and the number of threads.
struct Endpoints {
    std::string address;  // of the public endpoint
    std::uint16_t port = 0;
    std::uint16_t adminPort = 0;  // on loopback
    unsigned workers =
        2;  // for reports and verdicts; readers and bulk have a quarter as many, at least one, each
    Limits limits;
};

using RequestHandler = std::function<Answer(const Request&)>;
using PlaceOfRequest = std::function<Place(const Request&)>;

/// Listens at the public endpoint and at the operator's, calls `listening` with both ports, and serves until
/// SIGTERM, SIGINT or SIGHUP. Requests in progress are then answered first, within a few seconds, unless a
/// handler takes longer. A second signal ends the process at once.
/// Handlers are called by several threads and do not throw. Throws std::runtime_error when it cannot listen.
/// Raises the process's limit of open files as far as the system allows.
void Serve(const Endpoints& endpoints, Metrics& metrics, RequestHandler publicHandler,
           PlaceOfRequest publicPlace, RequestHandler adminHandler, PlaceOfRequest adminPlace,
           const std::function<void(std::uint16_t port, std::uint16_t adminPort)>& listening);

}  // namespace kel::server
