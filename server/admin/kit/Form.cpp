#include "server/admin/kit/Form.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>

#include "server/admin/kit/Html.h"
#include "server/http/Target.h"

namespace kel::server {

namespace {

std::string WithLineFeeds(std::string text)
{
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r')
            lines += text[i];
        else if (i + 1 == text.size() || text[i + 1] != '\n')
            lines += '\n';
    }
    return lines;
}

}  // namespace

std::optional<Form> Form::Read(std::string_view body)
{
    Form form;
    while (!body.empty()) {
        const std::string_view field = body.substr(0, body.find('&'));
        body.remove_prefix(std::min(field.size() + 1, body.size()));
        const std::size_t equals = std::min(field.find('='), field.size());
        const std::string_view value = field.substr(std::min(equals + 1, field.size()));
        if (form.fields.size() == MaxFields ||
            !form.fields
                 .emplace(Clean(DecodePercent(field.substr(0, equals), true)),
                          WithLineFeeds(Clean(DecodePercent(value, true))))
                 .second)
            return std::nullopt;
    }
    return form;
}

const std::string& Form::Text(const std::string& name) const
{
    static const std::string nothing;
    const auto found = fields.find(name);
    return found == fields.end() ? nothing : found->second;
}

int Form::Number(const std::string& name) const
{
    const std::int64_t number = WholeNumber(Text(name));
    return number > std::numeric_limits<int>::max() ? -1 : static_cast<int>(number);
}

std::int64_t WholeNumber(std::string_view text)
{
    std::int64_t number = -1;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), number);
    return error == std::errc() && end == text.end() && number >= 0 ? number : -1;
}

}  // namespace kel::server
