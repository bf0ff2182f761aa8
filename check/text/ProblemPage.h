// Pages about what went wrong: one sentence, and what the visitor can do.
#pragma once

#include <optional>
#include <string>

#include "check/text/CheckName.h"
#include "check/text/Page.h"
#include "program/machine/ServiceCheck.h"

namespace kel::check {

/// The file name does not say which check to make.
Page WrongFileNamePage();

/// The arguments are not the link of a check.
Page WrongLinkPage();

/// A file could not be written.
Page NotSavedPage(const std::string& reason);

/// An error of the program or of the system.
Page FailurePage(const std::string& reason);

/// Why an answer does not count.
/// @param answer to a question for the list of wanted values, or for a verdict
Page RefusedPage(const program::ServiceAnswer& answer, const CheckName& name, const std::string& service);

}  // namespace kel::check
