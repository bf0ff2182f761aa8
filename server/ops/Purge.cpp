#include "server/ops/Purge.h"

#include <fmt/format.h>
#include <charconv>
#include <chrono>
#include <stdexcept>

#include "server/base/Log.h"
#include "server/ops/Accounts.h"
#include "server/store/Deletion.h"

namespace kel::server {

namespace {

constexpr int MaxAge = 36'500;

std::chrono::hours ParseAge(const std::string& text)
{
    int number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    const std::string_view unit(read.ptr, static_cast<std::size_t>(end - read.ptr));
    if (read.ec != std::errc() || number < 1 || number > MaxAge || (unit != "d" && unit != "h"))
        throw std::runtime_error(
            fmt::format("an age is a number of days or hours like 90d or 12h, not '{}'", text));
    return unit == "d" ? std::chrono::days(number) : std::chrono::hours(number);
}

}  // namespace

int PurgeOlder(Database& database, std::int64_t time, const std::function<bool()>& ends)
{
    return Deletion::Run(
               database, [&](int most) { return Reports(database).DeleteOlder(time, most, nullptr); }, ends)
        .reports;
}

void Purge(Database& database, std::string_view option, const std::string& value)
{
    // The entry does not name the session or machine, which is to be forgotten.
    DeletionEntry entry{CommandLine, "purged",
                        std::string(option) + (option == "--older" ? " " + value : "")};
    std::function<int(int)> deleteSome;
    if (option == "--older") {
        const std::int64_t time = Now() - std::chrono::milliseconds(ParseAge(value)).count();
        deleteSome = [&, time](int most) { return Reports(database).DeleteOlder(time, most, &entry); };
    } else if (option == "--session") {
        deleteSome = [&](int most) { return Reports(database).DeleteSession(value, most, &entry); };
    } else if (option == "--machine") {
        deleteSome = [&](int most) { return Reports(database).DeleteMachine(value, most, &entry); };
    } else {
        throw std::runtime_error("purge needs --older, --session or --machine");
    }
    const int count = Deletion::Run(database, deleteSome, [] { return false; }).reports;
    Log(Level::Info, "purged", {{"reports", std::to_string(count)}});
}

}  // namespace kel::server
