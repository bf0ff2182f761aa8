#include "server/admin/ValueNames.h"

#include <map>

namespace kel::server {

std::string NameOfValue(std::string_view id)
{
    static const auto names = [] {
        std::map<std::string, std::string, std::less<>> all;
        for (const ValueName& value : ValueNames)
            all[std::to_string(value.id)] = std::string(value.detector).append(": ").append(value.name);
        return all;
    }();
    const auto found = names.find(id);
    return found == names.end() ? std::string() : found->second;
}

}  // namespace kel::server
