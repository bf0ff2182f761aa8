// The settings that are numbers: their defaults, their bounds, and the member that each one sets.
#include "server/ops/Config.h"

#include <gtest/gtest.h>

namespace kel::server {

namespace {

struct Row {
    std::string name;
    std::int64_t usual, min, max;
    std::function<std::int64_t(const Config&)> get;
};

const Row Rows[] = {
    {"port", 8080, 0, 65'535, [](const Config& c) { return c.endpoints.port; }},
    {"admin-port", 8081, 0, 65'535, [](const Config& c) { return c.endpoints.adminPort; }},
    {"workers", 2, 1, 64, [](const Config& c) { return c.endpoints.workers; }},
    {"connections", 10'000, 1, 1'000'000, [](const Config& c) { return c.endpoints.limits.connections; }},
    {"body-kb", 256, 16, 16'384, [](const Config& c) { return c.endpoints.limits.bodyBytes >> 10; }},
    {"bodies-mb", 256, 4, 65'536, [](const Config& c) { return c.endpoints.limits.bodiesBytes >> 20; }},
    {"request-seconds", 30, 1, 3600, [](const Config& c) { return c.endpoints.limits.request.count(); }},
    {"idle-seconds", 30, 1, 3600, [](const Config& c) { return c.endpoints.limits.idle.count(); }},
    {"answer-seconds", 60, 1, 3600, [](const Config& c) { return c.endpoints.limits.answer.count(); }},
    {"database-connections", 4, 1, 100, [](const Config& c) { return c.database.connections; }},
    {"keep-days", 400, 0, 36'500, [](const Config& c) { return c.keep.count(); }},
    {"min-free-mb", 512, 0, 1'000'000'000, [](const Config& c) { return c.database.bounds.minFree >> 20; }},
    {"max-database-mb", 0, 0, 1'000'000'000,
     [](const Config& c) { return c.database.bounds.maxStored >> 20; }},
    {"session-reports", 1000, 0, 1'000'000, [](const Config& c) { return c.database.bounds.sessionReports; }},
    {"check-downloads", 100, 1, 10'000, [](const Config& c) { return c.checks.downloads; }},
    {"check-questions", 1000, 1, 100'000, [](const Config& c) { return c.checks.questions; }},
    {"session-hours", 12, 1, 720, [](const Config& c) { return c.admin.sessionHours; }},
};

Config Read(std::vector<std::string> arguments)
{
    return Config::Read(arguments, {});
}

TEST(Config, EachNumberHasItsDefaultAndBoundsAndSetsItsMember)
{
    for (const Row& row : Rows) {
        EXPECT_EQ(row.get(Read({})), row.usual) << row.name;
        for (const std::int64_t number : {row.min, row.max}) {
            const Config config = Read({"--" + row.name, std::to_string(number)});
            for (const Row& other : Rows)
                EXPECT_EQ(other.get(config), &other == &row ? number : other.usual)
                    << other.name << " with --" << row.name << ' ' << number;
        }
        for (const std::int64_t number : {row.min - 1, row.max + 1})
            EXPECT_THROW(Read({"--" + row.name, std::to_string(number)}), std::runtime_error)
                << row.name << ' ' << number;
    }
}

}  // namespace

}  // namespace kel::server
