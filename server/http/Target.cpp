#include "server/http/Target.h"

#include <charconv>

#include "verdict/text/Text.h"

namespace kel::server {

namespace {

std::string Decode(std::string_view text)
{
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = 0;
        if (text[i] == '%' && i + 2 < text.size()) {
            const char* digits = text.data() + i + 1;
            if (std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
                decoded += static_cast<char>(byte);
                i += 2;
                continue;
            }
        }
        decoded += text[i];
    }
    return decoded;
}

/// Takes scheme and host off a whole address.
std::string_view WithoutHost(std::string_view text)
{
    constexpr std::string_view Scheme = "http://";
    if (Lower(text.substr(0, Scheme.size())) != Scheme)
        return text;
    const std::size_t slash = text.find('/', Scheme.size());
    return slash == std::string_view::npos ? std::string_view() : text.substr(slash);
}

}  // namespace

std::optional<Target> Target::Read(std::string_view text)
{
    text = WithoutHost(text);
    if (!text.starts_with('/'))
        return std::nullopt;
    const std::size_t question = text.find('?');
    Target target;
    target.path = Decode(text.substr(0, question));
    if (question == std::string_view::npos)
        return target;
    for (std::string_view rest = text.substr(question + 1); !rest.empty();) {
        const std::string_view parameter = rest.substr(0, rest.find('&'));
        rest.remove_prefix(std::min(parameter.size() + 1, rest.size()));
        const std::size_t equals = parameter.find('=');
        target.query.push_back(
            {Decode(parameter.substr(0, equals)),
             equals == std::string_view::npos ? std::string() : Decode(parameter.substr(equals + 1))});
    }
    return target;
}

std::optional<std::string> Target::Only(std::string_view name) const
{
    const Parameter* found = nullptr;
    for (const Parameter& parameter : query) {
        if (parameter.name != name)
            continue;
        if (found)
            return std::nullopt;
        found = &parameter;
    }
    return found ? std::optional(found->value) : std::nullopt;
}

}  // namespace kel::server
