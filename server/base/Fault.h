#pragma once

#include <stdexcept>
#include <string>

namespace kel::server {

/// The status of a failure after which a client may try again later.
inline constexpr int Unavailable = 503;

/// A request that cannot be served: an HTTP status for the client, a reason for the log.
class Fault : public std::runtime_error {
public:
    Fault(int status, const std::string& reason) : std::runtime_error(reason), status(status) {}

    int Status() const { return status; }

private:
    int status;
};

/// There is no room to store something. Counted and logged as 507; a client gets 503.
class NoRoom : public Fault {
public:
    static constexpr int Code = 507;

    explicit NoRoom(const std::string& reason) : Fault(Code, reason) {}
};

}  // namespace kel::server
