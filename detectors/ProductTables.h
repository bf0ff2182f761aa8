// What the detectors of software look for: a row for each product. A new product is a new row, and its ids go
// into catalogue/values.tsv; no other code knows of it.
#pragma once

#include <span>

#include "probes/software/Product.h"

namespace kel {

std::span<const Product> BrowserTable();
std::span<const Product> ApplicationTable();
std::span<const Product> RuntimeTable();

}  // namespace kel
