#include "tools/load/Client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace kel::load {

namespace {

constexpr timeval Patience{30, 0};

[[noreturn]] void Fail(const std::string& what)
{
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

}  // namespace

Client::Client(std::uint16_t port) : socket(::socket(AF_INET, SOCK_STREAM, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int yes = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &Patience, sizeof Patience);
    if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(socket);
        Fail("connect");
    }
}

Client::~Client()
{
    close(socket);
}

int Client::Ask(const std::string& method, const std::string& target, const std::string& content)
{
    std::string request = method + " " + target + " HTTP/1.1\r\nHost: localhost\r\nContent-Length: " +
                          std::to_string(content.size()) + "\r\n\r\n" + content;
    for (std::size_t sent = 0; sent < request.size();) {
        const ssize_t count = send(socket, request.data() + sent, request.size() - sent, MSG_NOSIGNAL);
        if (count <= 0)
            Fail("send");
        sent += static_cast<std::size_t>(count);
    }
    received.clear();
    std::size_t headers = std::string::npos;
    while ((headers = received.find("\r\n\r\n")) == std::string::npos)
        Receive();
    const std::size_t length = received.find("Content-Length: ");
    if (length == std::string::npos || length > headers)
        throw std::runtime_error("an answer without its length");
    const std::size_t end = headers + 4 + std::stoul(received.substr(length + 16));
    while (received.size() < end)
        Receive();
    body = received.substr(headers + 4);
    return std::stoi(received.substr(9, 3));
}

void Client::Receive()
{
    std::array<char, 16384> piece;
    const ssize_t count = recv(socket, piece.data(), piece.size(), 0);
    if (count <= 0)
        Fail("receive");
    received.append(piece.data(), static_cast<std::size_t>(count));
}

}  // namespace kel::load
