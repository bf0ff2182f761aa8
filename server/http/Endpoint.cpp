#include "server/http/Endpoint.h"

#include "server/base/Log.h"

namespace kel::server {

void Endpoint::Refuse(int status, const char* reason)
{
    metrics.refused.Add(status);
    Log(Level::Warning, "refused", {{"status", std::to_string(status)}, {"reason", reason}});
}

}  // namespace kel::server
