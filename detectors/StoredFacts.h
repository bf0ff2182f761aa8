#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "values/Bandwidth.h"
#include "values/Count.h"
#include "values/DeviceID.h"
#include "values/Exists.h"
#include "values/Name.h"
#include "values/Resolution.h"
#include "values/Size.h"
#include "values/Speed.h"
#include "values/Version.h"

namespace kel {

/// A fact that a detector stores: its id, and its type as `catalogue/values.tsv` names it.
struct StoredFact {
    unsigned id;
    std::string_view type;
};

using StoredFacts = std::vector<StoredFact>;

/// The catalogue's name of the type of a detector's member. An option has the type that it holds.
template <typename T>
inline constexpr std::string_view TypeName{};
template <>
inline constexpr std::string_view TypeName<std::wstring> = "text";
template <>
inline constexpr std::string_view TypeName<bool> = "Exists";
template <>
inline constexpr std::string_view TypeName<Exists> = "Exists";
template <>
inline constexpr std::string_view TypeName<std::int32_t> = "Count";
template <>
inline constexpr std::string_view TypeName<Count> = "Count";
template <>
inline constexpr std::string_view TypeName<Name> = "Name";
template <>
inline constexpr std::string_view TypeName<Size> = "Size";
template <>
inline constexpr std::string_view TypeName<Speed> = "Speed";
template <>
inline constexpr std::string_view TypeName<Bandwidth> = "Bandwidth";
template <>
inline constexpr std::string_view TypeName<Version> = "Version";
template <>
inline constexpr std::string_view TypeName<Resolution> = "Resolution";
template <>
inline constexpr std::string_view TypeName<DeviceID> = "DeviceID";
template <typename T>
inline constexpr std::string_view TypeName<std::optional<T>> = TypeName<T>;

}  // namespace kel
