#include "server/admin/DraftCheck.h"

#include <algorithm>

#include "server/admin/kit/Form.h"
#include "verdict/Requirements.h"

namespace kel::server {

namespace {

/// Removes a JSON text, whose opening quote is already removed, and returns it.
std::string TakeString(std::string_view& rest)
{
    std::string text;
    while (!rest.empty() && rest.front() != '"') {
        const std::size_t length = rest.front() == '\\' && rest.size() > 1 ? 2 : 1;
        text += rest.substr(0, length);
        rest.remove_prefix(length);
    }
    rest.remove_prefix(std::min<std::size_t>(1, rest.size()));
    return text;
}

}  // namespace

int LineOfRequirement(std::string_view text, int number)
{
    int depth = 0, found = 0;
    bool isList = false;
    std::string name;  // the last text: a list of the outermost object has its name right before it
    for (std::string_view rest = text; !rest.empty();) {
        const char c = rest.front();
        const std::size_t place = text.size() - rest.size();
        rest.remove_prefix(1);
        if (c == '"') {
            name = TakeString(rest);
        } else if (c == '{' || c == '[') {
            isList = isList || (depth == 1 && c == '[' && name == "requirements");
            if (isList && depth == 2 && ++found == number)
                return 1 + static_cast<int>(std::count(
                               text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
            ++depth;
        } else if (c == '}' || c == ']') {
            --depth;
            isList = isList && depth > 1;
        }
    }
    return 0;
}

std::string ValidationError(const std::string& text)
{
    try {
        Requirements::Read(text);
        return {};
    } catch (const std::exception& error) {
        std::string reason = error.what();
        // The JSON library's prefix means nothing to an editor; its parser's message names the line.
        if (reason.starts_with("[json.exception."))
            reason.erase(0, std::min(reason.find("] ") + 2, reason.size()));
        constexpr std::string_view Begin = "requirement ";
        if (reason.starts_with(Begin)) {
            const std::string digits = reason.substr(Begin.size(), reason.find(':') - Begin.size());
            const int line = LineOfRequirement(text, static_cast<int>(WholeNumber(digits)));
            if (line > 0)
                reason = "line " + std::to_string(line) + ", " + reason;
        }
        return reason;
    }
}

}  // namespace kel::server
