#pragma once

#include <cstdint>
#include <string>

namespace kel::load {

/// One kept connection to a service on loopback. Blocks; everything throws std::runtime_error.
class Client {
public:
    explicit Client(std::uint16_t port);
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// Sends a request, reads the answer to its end, and returns its status.
    int Ask(const std::string& method, const std::string& target, const std::string& body);
    /// The body of the last answer.
    const std::string& Body() const { return body; }

private:
    void Receive();

    int socket;
    std::string received, body;
};

}  // namespace kel::load
