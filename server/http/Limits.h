#pragma once

#include <chrono>
#include <cstddef>

namespace kel::server {

/// What a client may take of the service.
struct Limits {
    std::size_t connections = 10'000;
    std::size_t headerBytes = 8 * 1024;
    std::size_t bodyBytes = 2 * 1024 * 1024;
    std::size_t bodiesBytes = 256 * 1024 * 1024;  // of all requests that are under way together
    std::chrono::seconds request{30};             // from its first byte to its last
    std::chrono::seconds idle{30};                // until the first byte of the next
    std::chrono::seconds answer{60};              // a visitor's slow line takes the test file in this time
    std::chrono::seconds farewell{2};             // for a client that still sends what nobody reads
};

}  // namespace kel::server
