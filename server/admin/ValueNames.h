#pragma once

#include <span>
#include <string>

namespace kel::server {

/// What a value is, by `catalogue/values.tsv`, from which the build makes the table.
struct ValueName {
    int id;
    const char* detector;
    const char* name;
};

extern const std::span<const ValueName> ValueNames;

/// "Ram: total physical memory"; empty for an id that the table lacks.
std::string NameOfValue(std::string_view id);

}  // namespace kel::server
