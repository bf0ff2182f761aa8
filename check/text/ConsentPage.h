// What the visitor reads before anything of the machine is read.
#pragma once

#include <string>
#include <vector>

#include "check/text/CheckName.h"
#include "check/text/Page.h"

namespace kel::check {

/// Shown until the service has answered which values it wants.
Page WaitingPage(const std::string& service);

/// The values by area, a line each: "Memory: total physical memory; installed memory". Values of the
/// catalogue that are always empty, and those that a page sets, are left out.
/// @param maxNames of each area; further ones are counted
std::string ListValues(const std::vector<int>& values, std::size_t maxNames);

/// Who asks, what will be read and sent, and where it goes.
/// @param title of the product's requirements, as the service sent it; empty for none: the product's name is
/// shown instead
/// @param values those that the report will have
Page ConsentPage(const CheckName& name, const std::string& title, const std::string& service,
                 const std::vector<int>& values);

/// Whether the page has no room for all names of these values.
bool IsShortened(const std::vector<int>& values);

/// Shown while the machine is examined.
Page ProgressPage();

/// What happens at the moment.
/// @param area the part of the machine that is examined; empty once all are
std::string ProgressText(const std::string& area);

}  // namespace kel::check
