#pragma once

#include <string>

#include "verdict/SupportNote.h"
#include "verdict/Verdict.h"

namespace kel {

/// The verdict as XML for scripts; a recommendation has an element <recommended/>. Item and schema are the
/// texts of the analysis request, which the answer repeats.
std::string RenderXml(const Verdict& verdict, const std::string& item, const std::string& schema);

/// The same as JSON.
std::string RenderJson(const Verdict& verdict, const std::string& item, const std::string& schema);

/// The verdict as JSON for a page that waits for it: like the one above, with the product and session that
/// the page asked for in place of item and schema.
std::string RenderForPage(const Verdict& verdict, const std::string& product, const std::string& session);

/// The verdict as a complete page, in the style of the example page.
/// @param note null for a page without one
std::string RenderPage(const Verdict& verdict, const SupportNote* note = nullptr);

/// Only the lines, as the store keeps them: a JSON list of id, found and result, with "recommended" for a
/// recommendation, and "any of", a list of id, needed, found and result, for a line with alternatives.
std::string RenderLines(const Verdict& verdict);

}  // namespace kel
