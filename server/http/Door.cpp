#include "server/http/Door.h"

#include "server/base/Log.h"

namespace kel::server {

void Door::Refuse(int status, const char* reason)
{
    metrics.refused.Add(status);
    Log(Level::Warning, "refused", {{"status", std::to_string(status)}, {"reason", reason}});
}

}  // namespace kel::server
