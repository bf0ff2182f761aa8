#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kel {

/// Things that are sold in usual sizes, while a machine reports a little less; see FindNominalSize.
enum class SoldAs : std::uint8_t { Nothing, Memory, GraphicsMemory, Disk };

/// The text at a place among the catalogue's texts.
const char* CatalogueText(std::uint16_t place);

/// What the folder `catalogue` says about a value. The build generates the table from it; small, as each
/// module has it.
struct CatalogueValue {
    int id;
    int existence;  ///< id of the value that says whether this version's product is installed; 0: none
    std::uint16_t detectorPlace, areaPlace, namePlace, sourcePlace, cautionPlace;  ///< of texts
    bool hasIndexes;  ///< one for each device or installed version
    bool isGated;     ///< read only when it is wanted
    SoldAs soldAs;    ///< "at least" compares the nominal size

    const char* Detector() const { return CatalogueText(detectorPlace); }
    /// The part of the machine that the detector examines: "processor".
    const char* Area() const { return CatalogueText(areaPlace); }
    const char* Name() const { return CatalogueText(namePlace); }
    /// Where the detector reads it; NoSource for one that is always empty.
    const char* Source() const { return CatalogueText(sourcePlace); }
    /// Where the value misleads, and which one to use instead; empty for most.
    const char* Caution() const { return CatalogueText(cautionPlace); }
    /// Whether reports can hold the value; a page alone reads one that they never hold.
    bool IsReported() const { return !std::string_view(Caution()).starts_with("Never in a report"); }
};

/// The source of a value that has none.
constexpr std::string_view NoSource = "none";

/// All values, in the order of the catalogue.
extern const std::span<const CatalogueValue> CatalogueValues;

/// Null for an id that the catalogue lacks, such as one that only a page sets.
const CatalogueValue* FindCatalogueValue(int id);

}  // namespace kel
