// What the detectors of software look for: a row for each product. A new product takes a new row, and rows
// for its ids in catalogue/values.tsv; no other code changes.
#pragma once

#include <span>

#include "probes/software/Product.h"

namespace kel {

std::span<const Product> BrowserTable();
std::span<const Product> ApplicationTable();
std::span<const Product> RuntimeTable();

}  // namespace kel
