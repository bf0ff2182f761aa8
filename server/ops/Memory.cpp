#include "server/ops/Memory.h"

#include <unistd.h>

#include <fstream>

namespace kel::server {

std::size_t ResidentMemory()
{
    std::size_t all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace kel::server
