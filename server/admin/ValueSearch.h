#pragma once

#include <string>
#include <vector>

#include "verdict/Catalogue.h"

namespace kel::server {

/// The values whose id, area, name, type, unit or example has all of the words, in the catalogue's order.
/// Those that are always empty or never in a report are left out.
std::vector<const CatalogueValue*> FindValues(const std::string& words);

/// "amount of bytes, such as 15.8 GB"
std::string DescribeKind(const CatalogueValue& value);

}  // namespace kel::server
