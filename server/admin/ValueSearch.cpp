#include "server/admin/ValueSearch.h"

#include <fmt/format.h>
#include <algorithm>

#include "verdict/ValueKinds.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

bool HasWords(const CatalogueValue& value, std::string_view words)
{
    const ValueKind& kind = KindOf(value);
    const std::string text =
        Lower(fmt::format("{} {} {} {} {} {} {} {}", value.id, value.Area(), value.Detector(), value.Name(),
                          ToString(kind.type), kind.form, kind.example, kind.choices));
    while (!words.empty()) {
        const std::string_view word = words.substr(0, words.find(' '));
        if (text.find(word) == std::string::npos)
            return false;
        words.remove_prefix(std::min(word.size() + 1, words.size()));
    }
    return true;
}

}  // namespace

std::vector<const CatalogueValue*> FindValues(const std::string& words)
{
    const std::string wanted = Lower(Trim(words));
    std::vector<const CatalogueValue*> found;
    for (const CatalogueValue& value : CatalogueValues) {
        if (value.Source() != NoSource && value.IsReported() && HasWords(value, wanted))
            found.push_back(&value);
    }
    return found;
}

std::string DescribeKind(const CatalogueValue& value)
{
    const ValueKind& kind = KindOf(value);
    std::string text(ToString(kind.type));
    if (kind.choices[0] != 0)
        text.append(": ").append(kind.choices);
    else if (kind.example[0] != 0)
        text.append(", such as ").append(kind.example);
    return text;
}

}  // namespace kel::server
