#pragma once

#include <string>
#include <vector>

#include "server/admin/kit/Html.h"
#include "verdict/RequirementsCheck.h"

namespace kel::server {

/// The editor's text field, with the numbers of its lines beside it; the lines with findings are marked.
Html NumberedText(const std::string& text, const std::vector<Finding>& findings);

/// What was found in the text: errors and warnings, each with its line and a link to it. Empty without any.
Html FindingsBox(const std::string& text, const std::vector<Finding>& findings);

/// The requirements of the text, with links to their lines.
Html LineList(const std::string& text, const CheckedRequirements& checked);

}  // namespace kel::server
