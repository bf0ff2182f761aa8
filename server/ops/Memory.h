#pragma once

#include <cstddef>

namespace kel::server {

/// The process's memory in RAM, in bytes; 0 if the system does not report it.
std::size_t ResidentMemory();

}  // namespace kel::server
