#include "server/admin/kit/Form.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>

#include "server/admin/kit/Html.h"
#include "server/admin/kit/Multipart.h"
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

const std::string& Find(const std::map<std::string, std::string>& texts, const std::string& name)
{
    static const std::string nothing;
    const auto found = texts.find(name);
    return found == texts.end() ? nothing : found->second;
}

}  // namespace

std::optional<Form> Form::Read(std::string_view body, std::string_view contentType)
{
    if (!IsMultipart(contentType))
        return ReadFields(body);
    const auto parts = ReadParts(body, contentType, MaxFields);
    Form form;
    for (const FormPart& part : parts.value_or(std::vector<FormPart>())) {
        const bool isNew =
            part.isFile ? form.files.emplace(Clean(part.name), part.content).second
                        : form.fields.emplace(Clean(part.name), WithLineFeeds(Clean(part.content))).second;
        if (!isNew)
            return std::nullopt;
    }
    return parts ? std::optional(form) : std::nullopt;
}

std::optional<Form> Form::ReadFields(std::string_view body)
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
    return Find(fields, name);
}

const std::string& Form::File(const std::string& name) const
{
    return Find(files, name);
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
