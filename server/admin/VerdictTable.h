#pragma once

#include <string>

#include "server/admin/kit/Html.h"
#include "verdict/Verdict.h"

namespace kel::server {

/// The total of a verdict, how many lines fail, and the lines, the failing ones first.
Html VerdictTable(const std::string& caption, const Verdict& verdict);

/// A stored text, shortened; a dash when it is empty.
Html TextOrDash(const std::string& text);

/// A name and a value of a description list.
Html DescriptionEntry(const char* name, const Html& value);

}  // namespace kel::server
