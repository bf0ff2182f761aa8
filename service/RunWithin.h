// Bounds the time that an exchange may take of the thread that waits for it.
#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>

#include "service/InternetSession.h"

namespace kel {

/// An exchange that could not begin: nothing was sent.
class ExchangeNotStarted : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Runs an exchange on a thread of its own and waits for it. The platform's own timeouts would bound each
/// wait only, and a server that sends a byte now and then keeps within them for ever. At the limit the
/// exchange is told that nobody waits any more; it ends when the call that it is in returns. It must own what
/// it uses, and cannot write to the log.
/// @return null when the exchange ended in time; else the stage that it was in, and what it fills in is still
/// its own
/// @throws what the exchange throws; ExchangeNotStarted when no thread can be had, or when four exchanges of
/// this process have not ended yet
const char* RunWithin(std::chrono::milliseconds limit, std::function<void(InternetSession&)> exchange);

}  // namespace kel
