#pragma once

#include <libpq-fe.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace kel::server {

struct FinishPostgres {
    void operator()(PGconn* connection) const { PQfinish(connection); }
};
using PostgresHandle = std::unique_ptr<PGconn, FinishPostgres>;

/// The address of a PostgreSQL database, and how to connect to it.
class PostgresAddress {
public:
    /// Throws std::runtime_error when libpq cannot read it.
    explicit PostgresAddress(std::string address);

    /// A new connection. When the address names several hosts and asks for the one that accepts writes, all
    /// are tried at the same time, so that one that hangs does not delay the others. Throws Fault 503 when
    /// none connects within some seconds; the reason has no part of a password.
    PostgresHandle Connect() const;
    /// Whether a host other than the connection's now accepts writes. Takes at most a second.
    bool HasOtherPrimary(PGconn* connection) const;

private:
    struct Host {
        std::string name, address, port;
    };

    PostgresHandle Race(std::chrono::milliseconds time, std::string& reasons) const;
    PGconn* Start(const Host& host) const;
    std::string WithoutSecrets(const std::string& reason) const;

    std::string address;
    std::vector<Host> hosts;  // if the address asks for the one that accepts writes; otherwise none
    std::chrono::seconds limit;
    bool hasSecrets = false;
};

}  // namespace kel::server
