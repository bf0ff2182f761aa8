#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kel::check {

/// Which check the program was downloaded for.
struct CheckName {
    std::string product;  // as the service names it
    std::string session;  // a UUID; the page that made it waits for its verdict

    bool operator==(const CheckName&) const = default;
};

/// Reads the program's own file name: "check.PRODUCT.SESSION.exe", the first and the last part in any case.
/// Browsers that find such a file put "(1)" before the extension, some with a blank. Nothing for other names.
std::optional<CheckName> ParseFileName(std::string_view name);

/// Reads a link of the form "kel-check:PRODUCT/SESSION". Nothing for any other text: every page can make a
/// link.
std::optional<CheckName> ParseLink(std::string_view link);

}  // namespace kel::check
