#include "server/store/PostgresAddress.h"

#include <fmt/format.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "server/base/Fault.h"

namespace kel::server {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::chrono::seconds ConnectLimit{5};
constexpr milliseconds ProbeLimit{1000};

/// The part at a place of a comma-separated list; the last one is repeated for every further place.
std::string Part(const std::string& list, std::size_t place)
{
    std::istringstream parts(list);
    std::string part;
    for (std::size_t i = 0; i <= place && std::getline(parts, part, ','); ++i) {
    }
    return part;
}

/// The text without what is between quotes in each line.
std::string WithoutQuotes(const std::string& text)
{
    std::string left;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t first = line.find('"'), last = line.rfind('"');
        if (first != last)
            line.replace(first, last - first + 1, "\"...\"");
        left += (left.empty() ? "" : "\n") + line;
    }
    return left;
}

/// Whether the address has a password, or may have a mistyped one.
bool MayHaveSecrets(const std::string& address)
{
    const std::size_t at = address.rfind('@'), user = address.find("://") + 3;
    return address.find("password") != address.npos || (at != address.npos && address.find(':', user) < at);
}

struct Attempt {
    PostgresHandle connection;
    PostgresPollingStatusType status = PGRES_POLLING_WRITING;
};

}  // namespace

PostgresAddress::PostgresAddress(std::string text)
    : address(std::move(text)), limit(ConnectLimit), hasSecrets(MayHaveSecrets(address))
{
    char* error = nullptr;
    const std::unique_ptr<PQconninfoOption, void (*)(PQconninfoOption*)> options(
        PQconninfoParse(address.c_str(), &error), PQconninfoFree);
    const std::unique_ptr<char, void (*)(void*)> reason(error, PQfreemem);
    if (!options)
        throw std::runtime_error("the address of the database: " +
                                 WithoutQuotes(reason ? reason.get() : "no memory"));
    std::string names, addresses, ports, target;
    for (const PQconninfoOption* option = options.get(); option->keyword; ++option) {
        const std::string_view keyword = option->keyword;
        const std::string value = option->val ? option->val : "";
        if (keyword == "host")
            names = value;
        else if (keyword == "hostaddr")
            addresses = value;
        else if (keyword == "port")
            ports = value;
        else if (keyword == "target_session_attrs")
            target = value;
        else if (keyword == "connect_timeout" && !value.empty())
            limit = std::chrono::seconds(std::atoi(value.c_str()));
    }
    const std::string& list = addresses.empty() ? names : addresses;
    const auto commas = static_cast<std::size_t>(std::count(list.begin(), list.end(), ','));
    if (commas == 0 || (target != "read-write" && target != "primary"))
        return;
    for (std::size_t i = 0; i <= commas; ++i)
        hosts.push_back({Part(names, i), Part(addresses, i), Part(ports, i)});
}

PostgresHandle PostgresAddress::Connect() const
{
    std::string reasons;
    PostgresHandle connection;
    if (!hosts.empty()) {
        connection = Race(limit, reasons);
    } else {
        connection.reset(Start({}));
        reasons = PQerrorMessage(connection.get());
    }
    if (PQstatus(connection.get()) != CONNECTION_OK)
        throw Fault(Unavailable, "database: " + WithoutSecrets(reasons));
    return connection;
}

bool PostgresAddress::HasOtherPrimary(PGconn* connection) const
{
    std::string reasons;
    const PostgresHandle primary = hosts.empty() ? PostgresHandle() : Race(ProbeLimit, reasons);
    const auto differs = [](const char* a, const char* b) { return a && b && std::strcmp(a, b) != 0; };
    return primary && (differs(PQhost(primary.get()), PQhost(connection)) ||
                       differs(PQport(primary.get()), PQport(connection)));
}

/// Tries all hosts at once; returns the first that connects, or null and the reasons.
PostgresHandle PostgresAddress::Race(milliseconds time, std::string& reasons) const
{
    const auto end = steady_clock::now() + time;
    std::vector<Attempt> attempts;
    for (const Host& host : hosts)
        attempts.push_back({PostgresHandle(Start(host))});
    while (!attempts.empty()) {
        std::vector<pollfd> sockets;
        for (const Attempt& attempt : attempts)
            sockets.push_back({PQsocket(attempt.connection.get()),
                               static_cast<short>(attempt.status == PGRES_POLLING_READING ? POLLIN : POLLOUT),
                               0});
        const auto left = std::chrono::duration_cast<milliseconds>(end - steady_clock::now());
        if (left.count() <= 0 || poll(sockets.data(), sockets.size(), static_cast<int>(left.count())) == 0) {
            reasons +=
                fmt::format("no host connects within {:.3g} s\n", static_cast<double>(time.count()) / 1000);
            return nullptr;
        }
        for (std::size_t i = sockets.size(); i-- > 0;) {
            Attempt& attempt = attempts[i];
            if (sockets[i].fd >= 0 && sockets[i].revents == 0)
                continue;
            attempt.status = PQconnectPoll(attempt.connection.get());
            if (attempt.status == PGRES_POLLING_OK)
                return std::move(attempt.connection);
            if (attempt.status != PGRES_POLLING_FAILED)
                continue;
            reasons += PQerrorMessage(attempt.connection.get());
            attempts.erase(attempts.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    return nullptr;
}

/// Begins a connection to one of the hosts; a host without a name stands for the whole address.
PGconn* PostgresAddress::Start(const Host& host) const
{
    const bool isOne = !host.name.empty() || !host.address.empty();
    const std::string seconds = std::to_string(ConnectLimit.count());
    // The address overrides the parameters before it.
    const std::array<const char*, 12> names{"connect_timeout",
                                            "fallback_application_name",
                                            "keepalives_idle",
                                            "keepalives_interval",
                                            "keepalives_count",
                                            "tcp_user_timeout",
                                            "dbname",
                                            "client_encoding",
                                            isOne ? "host" : nullptr,
                                            "hostaddr",
                                            "port"};
    const std::array<const char*, 12> texts{seconds.c_str(),
                                            "kel_server",
                                            "30",
                                            "5",
                                            "3",
                                            "20000",
                                            address.c_str(),
                                            "UTF8",
                                            host.name.c_str(),
                                            host.address.c_str(),
                                            host.port.c_str()};
    return isOne ? PQconnectStartParams(names.data(), texts.data(), 1)
                 : PQconnectdbParams(names.data(), texts.data(), 1);
}

/// When there is a password, texts that the library quotes may be parts of it.
std::string PostgresAddress::WithoutSecrets(const std::string& reason) const
{
    const std::string text = hasSecrets ? WithoutQuotes(reason) : reason;
    return text.substr(0, text.find_last_not_of('\n') + 1);
}

}  // namespace kel::server
