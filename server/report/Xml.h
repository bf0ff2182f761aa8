#pragma once

#include <pugixml.hpp>
#include <string_view>

namespace kel::server {

/// Reads an untrusted XML document. Throws Fault 400 unless it is well-formed UTF-8 with one root element;
/// declarations ("<!": document types, comments, marked sections) are always refused.
pugi::xml_document ReadXml(std::string_view text);

/// The same for a text that it has read before, so that its characters need no check.
pugi::xml_document ParseXml(std::string_view text);

/// The approximate number of elements in the text, counted by its opening tags. Much cheaper than parsing.
std::size_t CountElements(std::string_view text);

}  // namespace kel::server
