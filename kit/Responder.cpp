#include <winsock2.h>
#include <ws2tcpip.h>

#include "kit/Responder.h"

#include <array>
#include <cstdlib>

#include "kit/Text.h"
#include "program/files/File.h"
#include "program/text/UserError.h"
#include "verdict/text/Text.h"

namespace kel::kit {

namespace {

constexpr std::size_t AnswerFields = 5;
constexpr std::size_t MaxRequest = std::size_t{16} << 20;  // bytes
constexpr std::size_t MaxAnswer = std::size_t{1} << 20;
constexpr DWORD MaxWait = 30000;  // ms, for a part of a request
constexpr std::string_view HeadEnd = "\r\n\r\n";

/// Whether the head is complete, and the content that it announces.
bool IsComplete(const std::string& request)
{
    const std::size_t end = request.find(HeadEnd);
    if (end == std::string::npos)
        return false;
    const std::string head = Lower(request.substr(0, end));
    constexpr std::string_view Length = "content-length:";
    const std::size_t place = head.find(Length);
    const unsigned long length =
        place == std::string::npos ? 0 : std::strtoul(head.c_str() + place + Length.size(), nullptr, 10);
    return request.size() >= end + HeadEnd.size() + length;
}

std::string MakeAnswer(const std::string& status, const std::string& type, const std::string& content)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(content.size()) + "\r\nConnection: close\r\n\r\n" +
           content;
}

}  // namespace

std::string RequestPath(const std::string& line)
{
    const std::vector<std::string> words = SplitFields(line, ' ');
    std::string path = words.size() > 1 ? words[1] : "";
    constexpr std::string_view Scheme = "http://";
    if (path.starts_with(Scheme)) {
        const std::size_t slash = path.find('/', Scheme.size());
        path = slash == std::string::npos ? "/" : path.substr(slash);
    }
    return path;
}

Responder::Responder(const std::string& folder, unsigned short wantedPort)
{
    for (const std::vector<std::string>& row : ReadTable(folder + "\\answers.tsv", AnswerFields))
        answers.push_back({row[0], row[1],
                           MakeAnswer(row[2], row[3], program::ReadFile(folder + "\\" + row[4], MaxAnswer))});
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(wantedPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof(address);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        closesocket(listener);
        throw program::UserError("The port " + std::to_string(wantedPort) + " is taken.");
    }
    port = ntohs(address.sin_port);
    thread = std::thread([this] { Serve(); });
}

Responder::~Responder()
{
    closesocket(listener);
    if (thread.joinable())
        thread.join();
}

void Responder::Serve()
{
    for (;;) {
        const SOCKET connection = accept(listener, nullptr, nullptr);
        if (connection == INVALID_SOCKET)
            return;
        AnswerOne(connection);
        shutdown(connection, SD_SEND);
        closesocket(connection);
    }
}

void Responder::AnswerOne(std::uintptr_t connection) const
{
    const DWORD wait = MaxWait;
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&wait), sizeof(wait));
    std::string request;
    std::array<char, 65536> piece;
    while (!IsComplete(request) && request.size() < MaxRequest) {
        const int count = recv(connection, piece.data(), static_cast<int>(piece.size()), 0);
        if (count <= 0)
            return;
        request.append(piece.data(), static_cast<std::size_t>(count));
    }
    const std::string line = request.substr(0, request.find("\r\n"));
    const std::string path = RequestPath(line);
    std::string answer = MakeAnswer("404 Not Found", "text/plain", "no such answer");
    for (const Prepared& prepared : answers) {
        if (line.starts_with(prepared.method + " ") && path.starts_with(prepared.path)) {
            answer = prepared.answer;
            break;
        }
    }
    for (std::size_t sent = 0; sent < answer.size();) {
        const int count = send(connection, answer.data() + sent, static_cast<int>(answer.size() - sent), 0);
        if (count <= 0)
            return;
        sent += static_cast<std::size_t>(count);
    }
}

}  // namespace kel::kit
