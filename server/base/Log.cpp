#include "server/base/Log.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <iterator>

namespace kel::server {

namespace {

constexpr std::array Names{"debug", "info", "warning", "error"};
constexpr std::size_t MaxValueBytes = 300;  // bytes, to keep lines readable; a session may be longer
Level lowest = Level::Info;

bool IsPlain(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("._:/+-").find(c) != std::string_view::npos;
}

void AppendValue(std::string& line, std::string_view value)
{
    value = value.substr(0, MaxValueBytes);
    std::string quoted;
    bool plain = !value.empty();
    for (const char c : value) {
        plain = plain && IsPlain(c);
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (c < ' ' || c > '~') {
            std::array<char, 5> code{};
            std::snprintf(code.data(), code.size(), "\\x%02x", static_cast<unsigned char>(c));
            quoted += code.data();
        } else {
            quoted += c;
        }
    }
    line += plain ? std::string(value) : '"' + quoted + '"';
}

std::string Now()
{
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 40> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text.data() + length, text.size() - length, ".%03dZ", static_cast<int>(milliseconds));
    return text.data();
}

}  // namespace

void SetLogLevel(Level level)
{
    lowest = level;
}

void Log(Level level, std::string_view event, LogFields fields)
{
    if (level < lowest)
        return;
    std::string line = "time=" + Now() + " level=" + Names[static_cast<std::size_t>(level)] + " event=";
    AppendValue(line, event);
    for (const auto& [name, value] : fields) {
        line.append(" ").append(name).append("=");
        AppendValue(line, value);
    }
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);  // one call: the stream's lock keeps lines whole
}

}  // namespace kel::server
