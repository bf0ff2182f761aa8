#pragma once

#include <span>
#include <string_view>

namespace kel {

/// Things that are sold in usual sizes, while a machine reports a little less; see FindNominalSize.
enum class SoldAs { Nothing, Memory, GraphicsMemory, Disk };

/// What the folder `catalogue` says about a value. The build generates the table from it.
struct CatalogueValue {
    int id;
    const char* detector;
    const char* area;  // what of a machine the detector examines: "processor"
    const char* name;
    const char* source;   // where the detector reads it; NoSource for one that is always empty
    bool hasIndexes;      // one for each device or installed version
    bool isGated;         // read only when it is wanted
    int existence;        // id of the value that says whether this version's product is installed; 0: none
    SoldAs soldAs;        // "at least" compares the nominal size
    const char* caution;  // where the value misleads, and which one to use instead; empty for most
};

/// The source of a value that has none.
constexpr std::string_view NoSource = "none";

/// All values, in the order of the catalogue.
extern const std::span<const CatalogueValue> CatalogueValues;

/// Null for an id that the catalogue lacks, such as one that only a page sets.
const CatalogueValue* FindCatalogueValue(int id);

}  // namespace kel
