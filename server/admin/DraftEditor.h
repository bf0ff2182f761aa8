#pragma once

#include <string>
#include <vector>

#include "server/admin/login/AdminRequest.h"
#include "verdict/RequirementsCheck.h"

namespace kel::server {

/// The page with a text in the editor, a result above it, and the revision that a change replaces. It shows
/// what is wrong with the text, and `more` warnings, at their lines.
Answer DraftEditor(const AdminRequest& request, const std::string& text, int revision, const Html& result,
                   int status = 200, const std::vector<Finding>& more = {});

/// 409: the draft was changed meanwhile, by another account or in another tab. Shows both texts and what
/// differs.
Answer DraftConflict(const AdminRequest& request, const std::string& text);

/// A product's published versions, with links to their texts and to what differs.
Html VersionsTable(const AdminRequest& request, const std::string& referrer);

/// The text of the newest published version; empty when there is none.
std::string NewestText(Database& database, const std::string& referrer);

/// The text in lines, for reading: programs write requirements into a single line.
std::string InLines(const std::string& text);

}  // namespace kel::server
