// Bounds the time that an exchange may take of the thread that waits for it.
#pragma once

#include <chrono>
#include <functional>

#include "service/InternetHandles.h"

namespace kel {

/// Runs an exchange on a thread of its own and waits for it. At the limit its handles are closed, which ends
/// it; should it stay blocked all the same, it is left to itself a second later. The platform's own timeouts
/// would bound each wait only, and a server that sends a byte now and then keeps within them for ever.
///
/// An exchange that is left to itself keeps this module loaded until it ends. It must own what it uses, and
/// cannot write to the log.
/// @return whether the exchange ended in time; if not, what it fills in is still its own
/// @throws what the exchange throws; std::runtime_error when no thread can be had, or when four exchanges of
/// this process have not ended yet
bool RunWithin(std::chrono::milliseconds limit, std::function<void(InternetHandles&)> exchange);

}  // namespace kel
