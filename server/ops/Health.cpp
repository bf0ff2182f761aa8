#include "server/ops/Health.h"

#include <exception>

#include "server/base/Log.h"

namespace kel::server {

namespace {

constexpr const char* Type = "text/plain; charset=utf-8";

Answer NotReady(const std::string& word, const std::string& reason)
{
    Log(Level::Error, "not-ready", {{"reason", reason}});
    return {503, Type, std::make_shared<const std::string>(word + "\n")};
}

}  // namespace

Answer Readiness(Database& database)
{
    try {
        switch (database.State()) {
            case DatabaseState::Ready:
                return Answer::Of(Type, "ready\n");
            case DatabaseState::ReadOnly:
                return NotReady("the database does not accept writes", "it is read-only");
            default:
                return NotReady("there is no room for reports", "min_free_mb or max_database_mb");
        }
    } catch (const std::exception& error) {
        return NotReady("the database does not answer", error.what());
    }
}

}  // namespace kel::server
