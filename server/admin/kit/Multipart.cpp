#include "server/admin/kit/Multipart.h"

#include <algorithm>

#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::string_view Type = "multipart/form-data";
constexpr std::string_view LineEnd = "\r\n";
constexpr std::size_t MaxBoundary = 70;    // characters, by RFC 2046
constexpr std::size_t MaxPartHead = 4096;  // bytes; a browser sends the file's name

/// The value of a parameter, in quotes or not, such as boundary in "multipart/form-data; boundary=x".
std::optional<std::string_view> FindParameter(std::string_view header, std::string_view name)
{
    for (std::size_t at = header.find(';'); at != header.npos; at = header.find(';', at + 1)) {
        std::string_view rest = Trim(header.substr(at + 1));
        if (Lower(rest.substr(0, name.size())) != name || !rest.substr(name.size()).starts_with('='))
            continue;
        rest.remove_prefix(name.size() + 1);
        if (!rest.starts_with('"'))
            return Trim(rest.substr(0, rest.find(';')));
        rest.remove_prefix(1);
        const std::size_t end = rest.find('"');  // in a value, browsers send it as %22
        return end == rest.npos ? std::nullopt : std::optional(rest.substr(0, end));
    }
    return std::nullopt;
}

/// The line of a part's head that names its field.
std::string_view FindDisposition(std::string_view head)
{
    constexpr std::string_view Name = "content-disposition:";
    while (!head.empty()) {
        const std::string_view line = head.substr(0, head.find(LineEnd));
        if (Lower(line.substr(0, Name.size())) == Name)
            return line;
        head.remove_prefix(std::min(line.size() + LineEnd.size(), head.size()));
    }
    return {};
}

}  // namespace

bool IsMultipart(std::string_view contentType)
{
    return Lower(Trim(contentType.substr(0, contentType.find(';')))) == Type;
}

std::optional<std::vector<FormPart>> ReadParts(std::string_view body, std::string_view contentType,
                                               std::size_t max)
{
    const auto boundary = FindParameter(contentType, "boundary");
    if (!boundary || boundary->empty() || boundary->size() > MaxBoundary)
        return std::nullopt;
    const std::string delimiter = std::string(LineEnd).append("--").append(*boundary);
    const std::string_view first = std::string_view(delimiter).substr(LineEnd.size());
    if (!body.starts_with(first))
        return std::nullopt;
    body.remove_prefix(first.size());
    std::vector<FormPart> parts;
    while (!body.starts_with("--")) {
        const std::size_t head = body.substr(0, MaxPartHead).find("\r\n\r\n");
        const std::size_t end = body.find(delimiter, head);
        if (!body.starts_with(LineEnd) || head == body.npos || end == body.npos || parts.size() == max)
            return std::nullopt;
        const std::string_view disposition = FindDisposition(body.substr(LineEnd.size(), head));
        const auto name = FindParameter(disposition, "name");
        const std::size_t start = head + 2 * LineEnd.size();
        if (!name || end < start)
            return std::nullopt;
        parts.push_back({std::string(*name), FindParameter(disposition, "filename").has_value(),
                         body.substr(start, end - start)});
        body.remove_prefix(end + delimiter.size());
    }
    return parts;
}

}  // namespace kel::server
