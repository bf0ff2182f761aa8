#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "server/admin/kit/Html.h"

namespace kel::server {

/// A line of one text or of both.
struct DifferenceLine {
    enum class Kind { Same, Removed, Added };

    Kind kind;
    std::string_view text;  // of the text that was compared
};

/// What has to be done to one text for it to become the other, with as few changed lines as possible; when
/// the texts are too long for that, all lines between the first and the last difference are changed.
std::vector<DifferenceLine> CompareTexts(std::string_view before, std::string_view after);

/// The changed lines with three lines around them, or a sentence when there is none.
Html ShowDifference(const std::string& before, const std::string& after);

}  // namespace kel::server
