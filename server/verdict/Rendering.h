#pragma once

#include <string>

#include "server/verdict/Verdict.h"

namespace kel::server {

/// The verdict as a script reads it; a recommendation has an element <recommended/>. Item and schema are the
/// texts of the analysis request, handed back.
std::string RenderXml(const Verdict& verdict, const std::string& item, const std::string& schema);

/// The same as JSON.
std::string RenderJson(const Verdict& verdict, const std::string& item, const std::string& schema);

/// The verdict as a page that stands by itself, in the style of the check's own page.
std::string RenderPage(const Verdict& verdict);

/// The lines alone, as the store keeps them: a JSON list of id, found and result, with "recommended"
/// where it is, and "any of", a list of id, needed, found and result, where a line has alternatives.
std::string RenderLines(const Verdict& verdict);

}  // namespace kel::server
