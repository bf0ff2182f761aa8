#include "server/ops/Health.h"

#include <exception>

#include "server/base/Log.h"

namespace kel::server {

Answer Readiness(Store& store)
{
    constexpr const char* Type = "text/plain; charset=utf-8";
    try {
        store.Ping();
        return Answer::Of(Type, "ready\n");
    } catch (const std::exception& error) {
        Log(Level::Error, "not-ready", {{"reason", error.what()}});
        return {503, Type, std::make_shared<const std::string>("the database does not answer\n")};
    }
}

}  // namespace kel::server
