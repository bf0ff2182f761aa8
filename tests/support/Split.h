#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace kel::test {

/// The parts of a text: fields between bars, which may be empty, or whatever else between other separators.
inline std::vector<std::wstring> Split(const std::wstring& text, wchar_t separator)
{
    std::vector<std::wstring> parts;
    std::wistringstream stream(text);
    for (std::wstring part; std::getline(stream, part, separator);) {
        if (!part.empty() || separator == L'|')
            parts.push_back(part);
    }
    return parts;
}

}  // namespace kel::test
