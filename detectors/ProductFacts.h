#pragma once

#include <span>

#include "detectors/StoredFacts.h"
#include "diag/SourceFailures.h"
#include "probes/software/Product.h"
#include "probes/software/SoftwareFunctions.h"

namespace kel {

/// Stores whether a product is installed, and its version or versions: an empty text when it is not installed
/// or its version is unknown. The log shows the sources of both.
/// @param found the installations that count, one for each index; none when the product is not installed
void StoreProduct(const wchar_t* detector, const Product& product, std::span<const Installation> found);

/// Notes why values of a product are empty, when something failed while it was looked for.
void NoteProduct(const Product& product, const Failures& failures) noexcept;

/// Adds the facts that are stored about the products of a table to a list.
void AddFacts(StoredFacts& facts, std::span<const Product> table);

/// Stores for every product of a table that nothing is known: empty texts. Companions come last.
void StoreDefaults(std::span<const Product> table);

/// Looks for each product of a table and stores its newest installation. A failure at one product is logged,
/// and leaves that product unknown.
void StoreNewest(const wchar_t* detector, const SoftwareFunctions& functions, std::span<const Product> table);

}  // namespace kel
