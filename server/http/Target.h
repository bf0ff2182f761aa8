#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::server {

/// The text with each percent sign and its two digits replaced by their byte; a percent sign without digits
/// stays. In a form, each plus sign becomes a blank.
std::string DecodePercent(std::string_view text, bool isForm = false);

/// The target of a request line, read as bytes: clients use texts of any code page in it, and absolute
/// addresses when they take the service for a proxy.
struct Target {
    struct Parameter {
        std::string name, value;
        std::string raw;  // the value as it was sent
    };

    std::string path;              // percent-decoded, without host
    std::vector<Parameter> query;  // percent-decoded, in order

    /// Nothing when the target has no path.
    static std::optional<Target> Read(std::string_view text);

    /// The value of a parameter that the query has exactly once; nothing otherwise. With `isForm`, a plus
    /// sign is a blank, as in what a browser sends for a form.
    std::optional<std::string> Only(std::string_view name, bool isForm = false) const;
};

/// A request's target as the log shows it: without the sessions in it, as a session opens its verdict. A UUID
/// in the path and the value of the parameter "sessid" become an asterisk.
std::string WithoutSessions(std::string_view target);

}  // namespace kel::server
