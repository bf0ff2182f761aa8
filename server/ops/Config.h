#pragma once

#include <chrono>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "server/admin/login/Settings.h"
#include "server/http/Server.h"
#include "server/protocol/Checks.h"
#include "server/store/OpenDatabase.h"

namespace kel::server {

/// The service's settings. A later source wins: the configuration file, the environment, the command line.
struct Config {
    Endpoints endpoints{"127.0.0.1", 8080, 8081, 2, {}};
    DatabaseSettings database;
    AdminSettings admin;
    CheckSettings checks;
    std::string portFile;  // receives the public port once the service listens
    std::string adminPortFile;
    std::string logLevel = "info";
    std::chrono::days keep{400};  // reports; 0: always

    /// Removes `--config FILE` and `--name value` for any setting from the arguments; the command, its
    /// operands, and `commandOptions` with their values remain. In the file a line is `name = value`, empty,
    /// or a comment that begins with #; in the environment a setting is KEL_NAME. Throws std::runtime_error
    /// for an unknown name and for an invalid value.
    static Config Read(std::vector<std::string>& arguments, std::span<const std::string_view> commandOptions);

private:
    void Set(std::string name, const std::string& value);
    void ReadFile(const std::string& path);
    void ReadEnvironment();
};

}  // namespace kel::server
