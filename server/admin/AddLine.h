#pragma once

#include <string>

#include "server/admin/kit/Form.h"
#include "server/admin/kit/Html.h"

namespace kel::server {

/// Of the editor's buttons: the one that chooses a value for a new line, followed by its id.
inline constexpr std::string_view ChooseAction = "choose-";

/// The fields of the editor's form that add a line: a search among the values, and for the one that is
/// chosen, what a line about it needs: as the form has it, until another value is chosen.
Html AddLineFields(const Form& form);

/// The text with the line that the form describes as its last requirement. Throws std::runtime_error with
/// what the editor has to correct first.
std::string AddLine(const std::string& text, const Form& form);

}  // namespace kel::server
