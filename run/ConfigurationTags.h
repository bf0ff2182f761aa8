// Reads the tags of a configuration text.
#pragma once

#include <string>
#include <string_view>

namespace kel {

/// Takes the text between the first occurrence of a tag and its close tag by plain, case-sensitive substring
/// search: no XML, no unescaping, no trimming.
/// @param value the text found; empty when nothing was
/// @return whether the tag was found and its text is not empty
bool ExtractTag(const std::wstring& text, std::wstring_view openTag, std::wstring_view closeTag,
                std::wstring& value);

}  // namespace kel
