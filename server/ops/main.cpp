#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "server/admin/Site.h"
#include "server/base/Embedded.h"
#include "server/base/Log.h"
#include "server/http/Server.h"
#include "server/ops/Accounts.h"
#include "server/ops/Backup.h"
#include "server/ops/Config.h"
#include "server/ops/CountMerging.h"
#include "server/ops/Export.h"
#include "server/ops/HeapTrimmer.h"
#include "server/ops/Import.h"
#include "server/ops/JudgeFile.h"
#include "server/ops/Purge.h"
#include "server/ops/Restore.h"
#include "server/ops/Retention.h"
#include "server/ops/Routes.h"
#include "server/protocol/Checks.h"
#include "server/protocol/Service.h"
#include "server/store/Migrations.h"
#include "server/store/OpenDatabase.h"
#include "server/store/PostgresConnection.h"

namespace {

using namespace kel::server;  // NOLINT: this is the program of that namespace

constexpr std::string_view CheckOption = "--check", AsIsOption = "--as-is";

constexpr const char* Usage =
    "usage: kel_server COMMAND [--config FILE] [--SETTING VALUE]...\n"
    "  serve        runs the service\n"
    "  migrate      creates the database, or upgrades it to this program's version\n"
    "  import DIR   publishes the requirements of the folder's <referrer>.json files\n"
    "  import --as-is DIR\n"
    "               the same, with lines that never hold or always, such as an older version's export\n"
    "  check DIR, import --check DIR\n"
    "               says what is wrong with these files, without a database\n"
    "  export DIR   writes each referrer's newest requirements to such files\n"
    "  judge PRODUCT FILE [--json]\n"
    "               judges kel's support file, or a report's XML, by a product's newest requirements, or by\n"
    "               a file of requirements; ends with 0 (pass), 1 (fail), 2 (unknown) or 3 (an error)\n"
    "  backup FILE  copies an SQLite database while the service runs\n"
    "  restore FILE replaces the database with such a copy while the service is stopped\n"
    "  purge --older 90d | --session SESSION | --machine ID\n"
    "               deletes reports older than the given days (d) or hours (h), or of one session or "
    "machine\n"
    "  user add editor|reader NAME\n"
    "               makes an account, or gives it another password and role; the password is a line on\n"
    "               standard input\n"
    "  user remove NAME, user list\n"
    "  token add NAME [DAYS]\n"
    "               prints a new token of that account for programs\n"
    "  --help, --version\n";

/// Its exit code 1 is a verdict, so that its errors have another one.
constexpr std::string_view JudgeCommand = "judge";

/// Writes the file under another name first, so that a program that waits for it never reads half a port.
void WritePort(const std::string& path, std::uint16_t port)
{
    if (path.empty())
        return;
    std::ofstream(path + ".new") << port;
    std::filesystem::permissions(path + ".new", std::filesystem::perms(0644));
    std::filesystem::rename(path + ".new", path);
}

void RunServe(const Config& config)
{
    const HeapTrimmer trimmer;
    const std::unique_ptr<Database> database = OpenDatabase(config.database);
    Log(Level::Info, "keeping",
        {{"days", config.keep.count() > 0 ? std::to_string(config.keep.count()) : "all"}});
    Metrics metrics;
    Service service(*database, metrics);
    Checks checks(service, metrics, config.checks);
    std::optional<Retention> retention;
    if (config.keep.count() > 0)
        retention.emplace(*database, config.keep);
    std::optional<CountMerging> merging;
    if (PostgresConnection::IsAddress(config.database.location))
        merging.emplace(*database);
    Site site(*database, config.admin);
    const Router open = PublicRoutes(service, checks, metrics);
    Router admin = AdminRoutes(*database, metrics, config.admin);
    site.AddTo(admin);
    Serve(
        config.endpoints, metrics, [&](const Request& request) { return open.Handle(request); }, PublicPlace,
        [&](const Request& request) { return admin.Handle(request); }, AdminPlace,
        [&](std::uint16_t port, std::uint16_t adminPort) {
            Log(Level::Info, "listening",
                {{"address", config.endpoints.address},
                 {"port", std::to_string(port)},
                 {"admin_port", std::to_string(adminPort)}});
            WritePort(config.adminPortFile, adminPort);
            WritePort(config.portFile, port);
        });
    Log(Level::Info, "stopped");
}

void RunMigrate(const Config& config)
{
    Log(Level::Info, "migrated", {{"version", std::to_string(Migrate(*OpenForMigration(config.database)))}});
}

void SetLogLevel(const std::string& name)
{
    constexpr std::array Names{"debug", "info", "warning", "error"};
    const auto* found = std::find(Names.begin(), Names.end(), name);
    if (found == Names.end())
        throw std::runtime_error(
            fmt::format("setting 'log_level' needs debug, info, warning or error, not '{}'", name));
    kel::server::SetLogLevel(static_cast<Level>(found - Names.begin()));
}

int Run(std::vector<std::string> arguments)
{
    const auto asksFor = [&](const char* option) {
        return std::find(arguments.begin(), arguments.end(), option) != arguments.end();
    };
    if (asksFor("--help")) {
        std::cout << Usage;
        return 0;
    }
    if (asksFor("--version")) {
        std::cout << "kel_server " << Version << '\n';
        return 0;
    }
    const bool isJudge = !arguments.empty() && arguments[0] == JudgeCommand;
    const bool asJson = isJudge && std::erase(arguments, "--json") > 0;
    std::vector<std::string_view> commandOptions(PurgeOptions.begin(), PurgeOptions.end());
    commandOptions.emplace_back(CheckOption);
    commandOptions.emplace_back(AsIsOption);
    const Config config = Config::Read(arguments, commandOptions);
    SetLogLevel(config.logLevel);
    const std::string command = arguments.empty() ? "" : arguments[0];
    if (command != "export")  // requirements are public; every other file has visitors' data
        umask(S_IRWXG | S_IRWXO);
    if (command == "serve" && arguments.size() == 1) {
        RunServe(config);
    } else if (command == "migrate" && arguments.size() == 1) {
        RunMigrate(config);
    } else if (command == "import" && arguments.size() == 2) {
        Import(arguments[1], *OpenDatabase(config.database));
    } else if (command == "import" && arguments.size() == 3 && arguments[1] == AsIsOption) {
        Import(arguments[2], *OpenDatabase(config.database), ImportCheck::Readable);
    } else if (command == "import" && arguments.size() == 3 && arguments[1] == CheckOption) {
        CheckImport(arguments[2]);
    } else if (command == "check" && arguments.size() == 2) {
        CheckImport(arguments[1]);
    } else if (command == "export" && arguments.size() == 2) {
        Export(arguments[1], *OpenDatabase(config.database));
    } else if (isJudge && arguments.size() == 3) {
        return JudgeFile(
            arguments[1], arguments[2], asJson, [&] { return OpenDatabase(config.database); }, std::cout);
    } else if (command == "backup" && arguments.size() == 2) {
        Backup(config.database, arguments[1]);
    } else if (command == "restore" && arguments.size() == 2) {
        Restore(config.database, arguments[1]);
    } else if (command == "purge" && arguments.size() == 3) {
        Purge(*OpenDatabase(config.database), arguments[1], arguments[2]);
    } else if (!RunAccountCommand(
                   arguments, [&] { return OpenDatabase(config.database); }, std::cin, std::cout)) {
        std::cerr << Usage;
        return isJudge ? JudgeFailed : 2;
    }
    return 0;
}

}  // namespace

int main(int count, char** arguments)
{
    std::signal(SIGXFSZ, SIG_IGN);  // a file at the size limit counts as a full disk
    std::signal(SIGPIPE, SIG_IGN);  // the service keeps running when the reader of its log ends
    try {
        return Run({arguments + 1, arguments + count});
    } catch (const std::exception& error) {
        Log(Level::Error, "ended", {{"reason", error.what()}});
        return count > 1 && arguments[1] == JudgeCommand ? JudgeFailed : 1;
    }
}
