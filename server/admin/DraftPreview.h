#pragma once

#include <string>

#include "server/admin/RequestedValues.h"
#include "server/admin/figures/Recent.h"
#include "server/admin/kit/Html.h"
#include "server/store/Database.h"
#include "verdict/Requirements.h"
#include "verdict/Tally.h"

namespace kel::server {

/// What a draft would do to the newest reports of its product's last sessions.
struct DraftPreview {
    RecentSessions sessions;
    Tally draft, today;  // `today` is by the newest published version; empty when there is none
    RequestedValues values;

    /// Judges the newest reports of the referrer by the draft and by today's requirements.
    static DraftPreview Run(Database& database, const std::string& referrer, const Requirements& draft);

    /// The figures, as sentences and tables.
    Html Show() const;
    /// Only the values that the draft asks for.
    Html ShowValues() const { return values.Show(sessions); }
};

}  // namespace kel::server
