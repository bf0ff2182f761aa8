// The administration with a database that fails in ways that a real one cannot be made to.
#include "server/admin/Site.h"

#include <gtest/gtest.h>

#include "server/base/Fault.h"
#include "server/ops/MetricsPage.h"
#include "tests/server/FakeConnection.h"

namespace kel::server {

namespace {

struct Shown {
    int status;
    std::string body, metrics;
};

/// Makes a request as an editor; every statement fails, except the one that finds the log-in.
Shown Ask(const std::string& target, const std::function<void()>& fail)
{
    const auto respond = [&](const std::string& sql) {
        if (sql.find("login_session") == std::string::npos)
            fail();
        return SqlRows{SqlRow({"key", "ann", "editor", "token", "9", "browser"})};
    };
    const auto pool = std::make_shared<SqlPool>([&] { return std::make_unique<FakeConnection>(respond); }, 1);
    Database database(pool, pool, pool, "", {});
    Site site(database, {});
    Metrics metrics;
    Router router(metrics.adminEndpoint);
    site.AddTo(router);
    const Answer answer = router.Handle({"GET", target, "", {{"Cookie", "__Host-kel=x"}}});
    return {answer.status, *answer.body, *MetricsPage(metrics, database).body};
}

TEST(Site, OnlyDatabaseFailuresAreReportedAsSuch)
{
    const auto down = [] { throw Fault(503, "database: disk I/O error"); };
    const auto other = [] { throw std::length_error("secret"); };
    for (const auto& [target, route] : {std::pair{"/products/demo", "/products/*"},
                                        {"/api/v1/referrers/demo/draft", "/api/v1/referrers/*/draft"}}) {
        const std::string count = std::string(",route=\"") + route + "\",status=\"";
        const Shown failed = Ask(target, other);
        EXPECT_EQ(failed.status, 500) << target;
        EXPECT_NE(failed.body.find("The service failed. Its log has the reason."), std::string::npos)
            << target;
        EXPECT_EQ(failed.body.find("secret"), std::string::npos) << target;
        EXPECT_NE(failed.metrics.find("\nkel_database_errors_total 0\n"), std::string::npos) << target;
        EXPECT_NE(failed.metrics.find(count + "500\"} 1\n"), std::string::npos) << "counted elsewhere";

        const Shown unavailable = Ask(target, down);
        EXPECT_EQ(unavailable.status, 503) << target;
        EXPECT_NE(unavailable.body.find("The database did not answer."), std::string::npos) << target;
        EXPECT_NE(unavailable.metrics.find("\nkel_database_errors_total 1\n"), std::string::npos) << target;
    }
}

}  // namespace

}  // namespace kel::server
