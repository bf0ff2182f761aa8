// Bounds the time for which a thread waits for an exchange.
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

/// Runs an exchange on its own thread and waits for it. The platform's own timeouts bound only single waits,
/// and a server that sends a byte now and then never exceeds them. At the limit the exchange is abandoned; it
/// ends when its current call returns. It must own everything that it uses, and cannot write to the log.
/// @return null when the exchange ended in time; else its stage, and its data still belong to it
/// @throws the exchange's exception; ExchangeNotStarted when no thread can be created, or when four exchanges
/// of this process have not ended yet
const char* RunWithin(std::chrono::milliseconds limit, std::function<void(InternetSession&)> exchange);

}  // namespace kel
