// The administration over a store that fails as no database can be made to.
#include <gtest/gtest.h>

#include "server/admin/Site.h"
#include "server/base/Fault.h"
#include "server/ops/MetricsPage.h"
#include "server/store/SqlStore.h"

namespace kel::server {

namespace {

/// Whoever asks is an editor; the list of products fails.
class FailingStore : public SqlStore {
public:
    explicit FailingStore(std::function<void()> fail)
        : SqlStore(nullptr, nullptr, nullptr, "", {}), fail(std::move(fail))
    {
    }

    std::optional<Login> FindLogin(const std::string&) override
    {
        Login login;
        login.account = "ann";
        return login;
    }

    std::vector<Product> Products() override
    {
        fail();
        return {};
    }

private:
    std::function<void()> fail;
};

struct Shown {
    int status;
    std::string body, metrics;
};

Shown Ask(const std::string& target, std::function<void()> fail)
{
    FailingStore store(std::move(fail));
    Site site(store, {});
    Metrics metrics;
    Router router(metrics.admin);
    site.AddTo(router);
    const Answer answer = router.Handle({"GET", target, "", {{"Cookie", "__Host-kel=x"}}});
    return {answer.status, *answer.body, *MetricsPage(metrics, store).body};
}

TEST(Site, AFailureIsTheDatabasesOnlyWhenItIs)
{
    const auto database = [] { throw Fault(503, "database: disk I/O error"); };
    const auto other = [] { throw std::length_error("secret"); };
    for (const char* target : {"/", "/api/v1/referrers"}) {
        const Shown failed = Ask(target, other);
        EXPECT_EQ(failed.status, 500) << target;
        EXPECT_NE(failed.body.find("The service failed. Its log has the reason."), std::string::npos)
            << target;
        EXPECT_EQ(failed.body.find("secret"), std::string::npos) << target;
        EXPECT_NE(failed.metrics.find("\nkel_database_errors_total 0\n"), std::string::npos) << target;

        const Shown down = Ask(target, database);
        EXPECT_EQ(down.status, 503) << target;
        EXPECT_NE(down.body.find("The database did not answer."), std::string::npos) << target;
        EXPECT_NE(down.metrics.find("\nkel_database_errors_total 1\n"), std::string::npos) << target;
    }
}

}  // namespace

}  // namespace kel::server
