#pragma once

#include <stdexcept>
#include <string>

namespace kel::server {

/// A request that cannot be served: an HTTP status for the client, a reason for the log.
class Fault : public std::runtime_error {
public:
    Fault(int status, const std::string& reason) : std::runtime_error(reason), status(status) {}

    int Status() const { return status; }

private:
    int status;
};

}  // namespace kel::server
