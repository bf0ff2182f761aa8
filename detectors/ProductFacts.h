#pragma once

#include <span>

#include "detectors/StoredFacts.h"
#include "diag/SourceFailures.h"
#include "probes/software/Product.h"
#include "probes/software/SoftwareFunctions.h"

namespace kel {

/// Stores whether a product is there, and its version or versions: an empty text where it is not there or its
/// version is unknown. The log shows the sources of both.
/// @param found the installations that count, one for each index; none when the product is not there
void StoreProduct(const wchar_t* detector, const Product& product, std::span<const Installation> found);

/// Notes why values of a product are empty, when something failed while it was looked for.
void NoteProduct(const Product& product, const Failures& failures) noexcept;

/// Adds what is stored of the products of a table to a list.
void AddFacts(StoredFacts& facts, std::span<const Product> table);

/// Stores of every product of a table that nothing is known: empty texts. Companions come last.
void StoreDefaults(std::span<const Product> table);

/// Looks for each product of a table and stores the newest installation of it. What fails for one is logged,
/// and leaves it unknown.
void StoreNewest(const wchar_t* detector, const SoftwareFunctions& functions, std::span<const Product> table);

}  // namespace kel
