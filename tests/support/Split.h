#pragma once

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace kel::test {

using Lines = std::vector<std::wstring>;

/// Fields between bars, which may be empty, or the parts of a text between other separators, which are not.
inline Lines Split(const std::wstring& text, wchar_t separator)
{
    Lines parts;
    std::wistringstream stream(text);
    for (std::wstring part; std::getline(stream, part, separator);) {
        if (!part.empty() || separator == L'|')
            parts.push_back(part);
    }
    return parts;
}

/// The fields of a line, padded with empty ones up to the given number.
inline Lines FieldsOf(const std::wstring& line, std::size_t count)
{
    Lines fields = Split(line, L'|');
    fields.resize(std::max(count, fields.size()));
    return fields;
}

/// A number in a field; 0 when that is empty.
inline std::uint64_t NumberOf(const std::wstring& field, int base = 10)
{
    return field.empty() ? 0 : std::stoull(field, nullptr, base);
}

inline std::string Narrow(const std::wstring& text)
{
    return {text.begin(), text.end()};
}

}  // namespace kel::test
