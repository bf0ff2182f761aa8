#include "server/http/Target.h"

#include <charconv>

#include "verdict/text/Text.h"
#include "verdict/text/Uuid.h"

namespace kel::server {

namespace {

/// Removes scheme and host from an absolute address.
std::string_view WithoutHost(std::string_view text)
{
    constexpr std::string_view Scheme = "http://";
    if (Lower(text.substr(0, Scheme.size())) != Scheme)
        return text;
    const std::size_t slash = text.find('/', Scheme.size());
    return slash == std::string_view::npos ? std::string_view() : text.substr(slash);
}

constexpr std::size_t UuidLength = 36;

std::string PathWithoutSessions(std::string_view path)
{
    std::string shown;
    while (!path.empty()) {
        const bool isSession = IsUuid(path.substr(0, UuidLength));
        shown += isSession ? '*' : path.front();
        path.remove_prefix(isSession ? UuidLength : 1);
    }
    return shown;
}

}  // namespace

std::string DecodePercent(std::string_view text, bool isForm)
{
    std::string decoded;
    while (!text.empty()) {
        unsigned char byte = 0;
        const bool isEscape =
            text.front() == '%' && text.size() > 2 &&
            std::from_chars(text.data() + 1, text.data() + 3, byte, 16).ptr == text.data() + 3;
        const char plain = isForm && text.front() == '+' ? ' ' : text.front();
        decoded += isEscape ? static_cast<char>(byte) : plain;
        text.remove_prefix(isEscape ? 3 : 1);
    }
    return decoded;
}

std::optional<Target> Target::Read(std::string_view text)
{
    text = WithoutHost(text);
    if (!text.starts_with('/'))
        return std::nullopt;
    const std::size_t question = text.find('?');
    Target target;
    target.path = DecodePercent(text.substr(0, question));
    if (question == std::string_view::npos)
        return target;
    for (std::string_view rest = text.substr(question + 1); !rest.empty();) {
        const std::string_view parameter = rest.substr(0, rest.find('&'));
        rest.remove_prefix(std::min(parameter.size() + 1, rest.size()));
        const std::size_t equals = parameter.find('=');
        const std::string_view raw = equals == std::string_view::npos ? "" : parameter.substr(equals + 1);
        target.query.push_back(
            {DecodePercent(parameter.substr(0, equals)), DecodePercent(raw), std::string(raw)});
    }
    return target;
}

std::string WithoutSessions(std::string_view target)
{
    constexpr std::string_view Session = "sessid=";
    const std::size_t question = std::min(target.find('?'), target.size());
    std::string shown = PathWithoutSessions(target.substr(0, question));
    for (std::string_view query = target.substr(question); !query.empty();) {
        const std::string_view part = query.substr(0, query.find('&', 1));  // with what separates it
        const bool isSession = part.substr(1).starts_with(Session);
        shown += isSession ? part.substr(0, Session.size() + 1) : part;
        shown += isSession ? "*" : "";
        query.remove_prefix(part.size());
    }
    return shown;
}

std::optional<std::string> Target::Only(std::string_view name, bool isForm) const
{
    const Parameter* found = nullptr;
    for (const Parameter& parameter : query) {
        if (parameter.name != name)
            continue;
        if (found)
            return std::nullopt;
        found = &parameter;
    }
    if (!found)
        return std::nullopt;
    return isForm ? DecodePercent(found->raw, true) : found->value;
}

}  // namespace kel::server
