#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "server/store/SqlConnection.h"

namespace kel::server {

/// A connection without a database: a function answers its statements.
class FakeConnection : public SqlConnection {
public:
    using Respond = std::function<SqlRows(const std::string& sql)>;

    explicit FakeConnection(Respond respond = [](const std::string&) { return SqlRows(); })
        : respond(std::move(respond))
    {
    }

    void Execute(const std::string&) override {}
    void Begin() override {}
    bool IsBroken() override { return false; }
    bool IsWritable() override { return true; }
    std::size_t LargeRowsAtOnce() const override { return 1; }
    DatabaseSize Size() override { return {}; }
    std::span<const char* const> Migrations() const override { return {}; }
    int Version() override { return 0; }
    void SetVersion(int) override {}

protected:
    SqlRows Run(const std::string& sql, const std::vector<SqlValue>&) override { return respond(sql); }

private:
    Respond respond;
};

}  // namespace kel::server
