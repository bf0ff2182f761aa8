#include "server/protocol/SetCache.h"

#include <gtest/gtest.h>

#include "tests/server/FakeConnection.h"

namespace kel::server {
namespace {

TEST(SetCache, KeepsTheNewestVersionsUpToItsBound)
{
    int reads = 0;
    const auto respond = [&](const std::string&) {
        ++reads;
        return SqlRows{SqlRow({R"({"title": "T", "requirements": []})"})};
    };
    const auto pool = std::make_shared<SqlPool>([&] { return std::make_unique<FakeConnection>(respond); }, 1);
    Database database(pool, pool, pool, "", {});
    SetCache cache(database, 2);
    for (const auto& [set, expected] : {std::pair{1, 1}, {2, 2}, {1, 2}, {3, 3}, {2, 3}, {3, 3}, {1, 4}}) {
        EXPECT_EQ(cache.Get(set)->title.Default(), "T");
        EXPECT_EQ(reads, expected) << "reads after set " << set;
    }
}

}  // namespace
}  // namespace kel::server
