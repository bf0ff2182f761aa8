#pragma once

#include <pugixml.hpp>
#include <string_view>

namespace kel::server {

/// Reads an XML document that a stranger sent. Throws Fault 400 unless it is well-formed UTF-8 with one root
/// element; declarations ("<!": document types, comments, marked sections) are refused altogether.
pugi::xml_document ReadXml(std::string_view text);

/// About how many elements the text has: its tags that do not close one. Costs a fraction of reading it.
std::size_t CountElements(std::string_view text);

}  // namespace kel::server
