#pragma once

#include <chrono>
#include <cstddef>

namespace kel::server {

/// What a client may use of the service.
struct Limits {
    static constexpr std::size_t Kilobyte = 1024;
    static constexpr std::size_t Megabyte = 1024 * Kilobyte;
    static constexpr std::size_t Piece = 8 * Kilobyte;  // the bytes that one read takes
    static constexpr std::size_t SentPiece = Megabyte;  // of a shared body, within the time for an answer
    static constexpr std::size_t SmallBody = 16 * Kilobyte;  // several times a usual report

    std::size_t connections = 10'000;
    std::size_t headerBytes = 8 * Kilobyte;
    std::size_t bodyBytes = 256 * Kilobyte;
    std::size_t formBytes =
        4 * Megabyte;  // a body for the operator: a draft of 1 MB, each quote as three bytes
    std::size_t bodiesBytes = 256 * Megabyte;  // of all requests and answers in progress together
    std::chrono::seconds request{30};          // from its first byte to its last
    std::chrono::seconds idle{30};             // until the first byte of the next
    std::chrono::seconds answer{60};           // enough for the test file over a visitor's slow line
    std::chrono::seconds linger{2};            // for a client that still sends a refused request
    std::chrono::seconds queue{5};             // until a thread works on the request
    std::chrono::seconds absent{1};            // the same, once the client has closed its side
    std::chrono::seconds stop{3};              // for requests in progress when the service stops
};

}  // namespace kel::server
