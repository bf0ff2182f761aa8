#include "program/host/Caller.h"

#include <algorithm>
#include <string_view>

#include "BuildSettings.h"

namespace kel::program {

namespace {

constexpr std::string_view OriginPrefix = "chrome-extension://", OriginSuffix = "/";

bool IsListed(std::string_view id)
{
    constexpr std::string_view Separator = ";";
    std::string_view rest = KEL_EXTENSION_IDS;
    while (!rest.empty()) {
        const std::string_view listed = rest.substr(0, rest.find(Separator));
        if (id == listed)
            return true;
        rest.remove_prefix(std::min(rest.size(), listed.size() + Separator.size()));
    }
    return false;
}

}  // namespace

bool IsStartedByBrowser(const std::vector<std::string>& arguments)
{
    if (arguments.empty())
        return false;
    return arguments[0].starts_with(OriginPrefix) ||
           (arguments.size() == 2 && arguments[0].ends_with(".json") && IsListed(arguments[1]));
}

bool IsAllowedCaller(const std::vector<std::string>& callers)
{
    if (callers.size() == 2)
        return IsListed(callers[1]);
    if (callers.size() != 1 || !callers[0].starts_with(OriginPrefix) || !callers[0].ends_with(OriginSuffix))
        return false;
    std::string_view id = callers[0];
    id.remove_prefix(OriginPrefix.size());
    id.remove_suffix(std::min(id.size(), OriginSuffix.size()));
    return IsListed(id);
}

}  // namespace kel::program
