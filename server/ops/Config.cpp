#include "server/ops/Config.h"

#include <fmt/format.h>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>

#include "verdict/text/Text.h"

namespace kel::server {

namespace {

std::uint64_t ParseNumber(const std::string& text, std::uint64_t min, std::uint64_t max)
{
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || number < min || number > max)
        throw std::runtime_error(fmt::format("needs a number from {} to {}", min, max));
    return number;
}

std::uint16_t ParsePort(const std::string& text)
{
    return static_cast<std::uint16_t>(ParseNumber(text, 0, 65535));
}

std::chrono::seconds ParseSeconds(const std::string& text)
{
    return std::chrono::seconds(ParseNumber(text, 1, 3600));
}

std::int64_t ParseMegabytes(const std::string& megabytes)
{
    return static_cast<std::int64_t>(ParseNumber(megabytes, 0, 1'000'000'000)) * Bounds::Megabyte;
}

/// The beginning that may be a setting's name. The rest may be a password.
std::string NameIn(std::string_view text)
{
    const auto* end = std::find_if(text.begin(), text.end(), [](char c) {
        return c != '_' && c != '-' && !(c >= 'a' && c <= 'z') && !(c >= 'A' && c <= 'Z');
    });
    return std::string(text.begin(), end);
}

struct Setting {
    std::string_view name;
    std::function<void(Config&, const std::string&)> set;
};

// docs/service.md describes them all.
const Setting Settings[] = {
    {"address", [](Config& c, const std::string& text) { c.endpoints.address = text; }},
    {"port", [](Config& c, const std::string& text) { c.endpoints.port = ParsePort(text); }},
    {"admin_port", [](Config& c, const std::string& text) { c.endpoints.adminPort = ParsePort(text); }},
    {"port_file", [](Config& c, const std::string& text) { c.portFile = text; }},
    {"admin_port_file", [](Config& c, const std::string& text) { c.adminPortFile = text; }},
    {"database", [](Config& c, const std::string& text) { c.database.location = text; }},
    {"durability",
     [](Config& c, const std::string& text) {
         if (text != "normal" && text != "full")
             throw std::runtime_error("needs normal or full");
         c.database.durability = text;
     }},
    {"database_connections",
     [](Config& c, const std::string& text) { c.database.connections = ParseNumber(text, 1, 100); }},
    {"keep_days",
     [](Config& c, const std::string& text) { c.keep = std::chrono::days(ParseNumber(text, 0, 36'500)); }},
    {"min_free_mb",
     [](Config& c, const std::string& text) { c.database.bounds.minFree = ParseMegabytes(text); }},
    {"max_database_mb",
     [](Config& c, const std::string& text) { c.database.bounds.maxStored = ParseMegabytes(text); }},
    {"session_reports",
     [](Config& c, const std::string& text) {
         c.database.bounds.sessionReports = static_cast<std::int64_t>(ParseNumber(text, 0, 1'000'000));
     }},
    {"workers",
     [](Config& c, const std::string& text) {
         c.endpoints.workers = static_cast<unsigned>(ParseNumber(text, 1, 64));
     }},
    {"log_level", [](Config& c, const std::string& text) { c.logLevel = text; }},
    {"connections",
     [](Config& c, const std::string& text) {
         c.endpoints.limits.connections = ParseNumber(text, 1, 1'000'000);
     }},
    {"body_kb",
     [](Config& c, const std::string& text) {
         c.endpoints.limits.bodyBytes = ParseNumber(text, 16, 16'384) * Limits::Kilobyte;
     }},
    {"bodies_mb",
     [](Config& c, const std::string& text) {
         c.endpoints.limits.bodiesBytes = ParseNumber(text, 4, 65536) * Limits::Megabyte;
     }},
    {"request_seconds",
     [](Config& c, const std::string& text) { c.endpoints.limits.request = ParseSeconds(text); }},
    {"idle_seconds",
     [](Config& c, const std::string& text) { c.endpoints.limits.idle = ParseSeconds(text); }},
    {"session_hours",
     [](Config& c, const std::string& text) {
         c.admin.sessionHours = static_cast<int>(ParseNumber(text, 1, 720));
     }},
    {"sso_header",
     [](Config& c, const std::string& text) {
         if (text != "on" && text != "off")
             throw std::runtime_error("needs on or off");
         c.admin.singleSignOn = text == "on";
     }},
    {"admin_host", [](Config& c, const std::string& text) { c.admin.host = text; }},
    {"check_program", [](Config& c, const std::string& text) { c.checks.program = text; }},
    {"check_downloads",
     [](Config& c, const std::string& text) { c.checks.downloads = ParseNumber(text, 1, 10'000); }},
    {"check_questions",
     [](Config& c, const std::string& text) {
         c.checks.questions = static_cast<unsigned>(ParseNumber(text, 1, 100'000));
     }},
    {"answer_seconds",
     [](Config& c, const std::string& text) { c.endpoints.limits.answer = ParseSeconds(text); }},
};

}  // namespace

void Config::Set(std::string name, const std::string& value)
{
    std::replace(name.begin(), name.end(), '-', '_');
    const auto* setting = std::find_if(std::begin(Settings), std::end(Settings),
                                       [&](const Setting& row) { return row.name == name; });
    if (setting == std::end(Settings))
        throw std::runtime_error(fmt::format("unknown setting '{}'", NameIn(name)));
    try {
        setting->set(*this, value);
    } catch (const std::exception& error) {
        throw std::runtime_error(fmt::format("setting '{}' {}, not '{}'", name, error.what(), value));
    }
}

void Config::ReadFile(const std::string& path)
{
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error(fmt::format("the configuration file {} cannot be read", path));
    for (std::string line; std::getline(file, line);) {
        const std::string_view text = Trim(line);
        if (text.empty() || text.starts_with('#'))
            continue;
        const std::size_t equals = text.find('=');
        if (equals == std::string_view::npos)
            throw std::runtime_error(fmt::format("{}: the line of '{}' has no '='", path, NameIn(text)));
        Set(std::string(Trim(text.substr(0, equals))), std::string(Trim(text.substr(equals + 1))));
    }
}

void Config::ReadEnvironment()
{
    for (const Setting& setting : Settings) {
        std::string name = "KEL_";
        for (const char c : setting.name)
            name += c == '_' ? c : static_cast<char>(c - 'a' + 'A');
        if (const char* value = std::getenv(name.c_str()))
            Set(std::string(setting.name), value);
    }
}

Config Config::Read(std::vector<std::string>& arguments, std::span<const std::string_view> commandOptions)
{
    Config config;
    std::vector<std::pair<std::string, std::string>> options;
    for (auto argument = arguments.begin(); argument != arguments.end();) {
        if (!argument->starts_with("--")) {
            ++argument;
            continue;
        }
        if (argument + 1 == arguments.end())
            throw std::runtime_error(fmt::format("--{} needs a value", NameIn(argument->substr(2))));
        if (std::find(commandOptions.begin(), commandOptions.end(), *argument) != commandOptions.end()) {
            argument += 2;
            continue;
        }
        options.emplace_back(argument->substr(2), *(argument + 1));
        argument = arguments.erase(argument, argument + 2);
    }
    for (const auto& [name, value] : options) {
        if (name == "config")
            config.ReadFile(value);
    }
    config.ReadEnvironment();
    for (const auto& [name, value] : options) {
        if (name != "config")
            config.Set(name, value);
    }
    return config;
}

}  // namespace kel::server
