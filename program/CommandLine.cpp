#include "program/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "BuildSettings.h"
#include "program/host/Caller.h"
#include "program/text/Output.h"
#include "program/text/UserError.h"
#include "service/ServiceHost.h"
#include "service/Utf8.h"
#include "verdict/text/Text.h"

namespace kel::program {

namespace {

constexpr const char* Footer =
    "Exit codes: 0 pass, or no difference; 1 fail, or a difference; 2 unknown;\n"
    "3 wrong arguments, files or answers, with one line that says what to do.\n"
    "-RegServer and -UnregServer register this program for 32-bit programs that use the control.\n"
    "Only \"check PRODUCT\", \"report --product\" and the value 71069 use the network.";

/// A name of a host, perhaps after a scheme.
std::string CheckHost(const std::string& text)
{
    std::string_view host = text;
    for (const std::string_view scheme : {"https://", "http://"})
        host.remove_prefix(host.starts_with(scheme) ? scheme.size() : 0);
    return IsHostName(FromUtf8(host))
               ? ""
               : "\"" + text + "\" is not the name of a host; it has no port and no path";
}

std::string CheckProduct(const std::string& text)
{
    return IsReferrer(text) ? "" : "\"" + text + "\" is not a product: letters, digits, \"-\" and \"_\"";
}

void AddFacts(CLI::App& app, Options& options)
{
    CLI::App* facts = app.add_subcommand("facts", "Show the facts of this machine");
    facts->add_option("subject", options.subjects,
                      "Areas (such as memory) or ids (such as 71063); all if none");
    CLI::Option* json = facts->add_flag("--json", options.asJson, "As JSON");
    facts->add_flag("--csv", options.asCsv, "As CSV")->excludes(json);
    facts->add_flag("--why", options.showsReasons, "Also the empty values, and why they are empty");
    facts->callback([&options] { options.command = Command::Facts; });
}

void AddCheck(CLI::App& app, Options& options)
{
    CLI::App* check = app.add_subcommand("check", "Compare this machine with what a product needs");
    CLI::Option* product = check->add_option("product", options.product, "Whose requirements the service has")
                               ->check(CheckProduct);
    CLI::Option* file = check->add_option("--requirements", options.requirements,
                                          "A file of requirements instead: nothing leaves the machine");
    file->excludes(product);
    check->add_option("--html", options.html, "Write the verdict as a page to this file, too");
    check->add_flag("--json", options.asJson, "As JSON");
    check
        ->add_option("--service", options.service,
                     "The host of another service; https://HOST for one with a certificate")
        ->check(CheckHost)
        ->excludes(file);
    check->callback([&options, product, file] {
        options.command = Command::Check;
        if (product->empty() && file->empty())
            throw CLI::RequiredError("A product, or --requirements with a file,");
    });
}

void AddReport(CLI::App& app, Options& options)
{
    CLI::App* report = app.add_subcommand("report", "Write what support needs to know into one file");
    report->add_option("file", options.files, "The file to write")->required()->expected(1);
    CLI::Option* product =
        report->add_option("--product", options.product, "With the service's verdict for it")
            ->check(CheckProduct);
    CLI::Option* file =
        report->add_option("--requirements", options.requirements, "With the verdict by this file");
    file->excludes(product);
    report
        ->add_option("--service", options.service,
                     "The host of another service; https://HOST for one with a certificate")
        ->check(CheckHost)
        ->excludes(file);
    report->callback([&options] { options.command = Command::Report; });
}

void AddExplain(CLI::App& app, Options& options)
{
    CLI::App* explain =
        app.add_subcommand("explain", "Show what a file says: each value, each line, and why");
    explain
        ->add_option("file", options.files, "A file of \"kel report\", a report of the control, or an export")
        ->required()
        ->expected(1);
    explain->add_option("--requirements", options.requirements, "Judge it by this file of requirements");
    explain->add_flag("--json", options.asJson, "The verdict alone, as JSON");
    explain->callback([&options] { options.command = Command::Explain; });
}

void AddCompare(CLI::App& app, Options& options)
{
    CLI::App* compare = app.add_subcommand("compare", "Show what differs between two such files");
    compare->add_option("files", options.files, "Two files")->required()->expected(2);
    compare->callback([&options] { options.command = Command::Compare; });
}

void AddHost(CLI::App& app, Options& options)
{
    CLI::App* host = app.add_subcommand("host", "Answer the browser extension; a browser starts this");
    host->add_option("caller", options.callers, "The extension, as the browser names it");
    host->add_option("--parent-window", options.parentWindow,
                     "The browser's window, as it names it; not used");
    host->callback([&options] { options.command = Command::Host; });
}

/// The switch of a local server, with which COM starts it, or a setup program registers it. Nothing where the
/// arguments are none.
std::optional<Command> ServerSwitch(const std::vector<std::string>& arguments)
{
    constexpr std::pair<const char*, Command> Switches[] = {{"Embedding", Command::Embedding},
                                                            {"RegServer", Command::RegisterServer},
                                                            {"UnregServer", Command::UnregisterServer}};
    if (arguments.size() != 1 || !(arguments[0].starts_with('-') || arguments[0].starts_with('/')))
        return std::nullopt;
    for (const auto& [name, command] : Switches) {
        if (_stricmp(arguments[0].c_str() + 1, name) == 0)
            return command;
    }
    return std::nullopt;
}

/// The version, and the service's host with its origin; a third line on a policy that is ignored.
std::string DescribeVersion()
{
    const std::string refused = ToUtf8(DescribeRefusedHost());
    return "kel " KEL_VERSION_TEXT "\nService: " + ToUtf8(DescribeServiceHost()) +
           (refused.empty() ? "" : "\n" + refused);
}

/// One line, in the words of this program.
std::string OneLine(std::string reason)
{
    std::replace(reason.begin(), reason.end(), '\n', ' ');
    return reason + ". \"kel --help\" lists the commands.";
}

}  // namespace

std::optional<Options> ReadCommandLine(std::vector<std::string> arguments)
{
    Options options;
    if (const auto command = ServerSwitch(arguments)) {
        options.command = *command;
        return options;
    }
    CLI::App app("Machine inventory: what this machine has, and whether it meets a product's requirements.",
                 "kel");
    app.footer(Footer);
    app.set_version_flag("--version", &DescribeVersion);
    app.require_subcommand(0, 1);
    app.allow_windows_style_options(false);  // a path may begin with a slash
    AddFacts(app, options);
    AddCheck(app, options);
    AddReport(app, options);
    AddExplain(app, options);
    AddCompare(app, options);
    AddHost(app, options);
    if (IsStartedByBrowser(arguments))  // which cannot add arguments of its own
        arguments.insert(arguments.begin(), "host");
    std::reverse(arguments.begin(), arguments.end());  // as the library takes them
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        const auto chosen = app.get_subcommands();
        Output::Standard().Write(chosen.empty() ? app.help() : chosen.front()->help());
        return std::nullopt;
    } catch (const CLI::CallForVersion& version) {
        Output::Standard().WriteLine(version.what());
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw UserError(OneLine(error.what()));
    }
    return options;
}

}  // namespace kel::program
