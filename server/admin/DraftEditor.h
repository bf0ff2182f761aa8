#pragma once

#include <string>

#include "server/admin/login/AdminRequest.h"

namespace kel::server {

/// The page with a text in the editor, a result above it, and the revision that a change replaces.
Answer DraftEditor(const AdminRequest& request, const std::string& text, int revision, const Html& result,
                   int status = 200);

/// 409: somebody else has changed the draft meanwhile. Shows both texts.
Answer DraftConflict(const AdminRequest& request, const std::string& text);

/// A product's published versions, with links to their texts.
Html VersionsTable(const AdminRequest& request, const std::string& referrer);

/// The text of the newest published version; empty when there is none.
std::string NewestText(Database& database, const std::string& referrer);

}  // namespace kel::server
