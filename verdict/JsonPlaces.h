#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The way to an entry of a JSON text: the names of members, and the numbers of list entries, from 0 on.
using JsonPath = std::vector<std::string>;

/// Where an entry of a JSON text is.
struct JsonPlace {
    int line = 1;          // from 1 on; of the innermost entry on the way that exists
    bool isFound = false;  // whether it is the entry itself
};

/// A name that one object has twice.
struct RepeatedName {
    std::string name;
    int line = 1;  // of the second one
};

/// Where a list takes another entry.
struct JsonListEnd {
    std::size_t place = 0;  // right behind the last entry, or behind the list's bracket
    bool isEmpty = true;
};

// For texts that a JSON parser has accepted; any other text has some place. Names with escapes are not found.

JsonPlace FindJsonPlace(std::string_view text, const JsonPath& path);
/// The first one, in an object that is at most eight levels deep.
std::optional<RepeatedName> FindRepeatedName(std::string_view text);
/// Of a list that is a member of the outermost object; nothing when there is none of that name.
std::optional<JsonListEnd> FindListEnd(std::string_view text, std::string_view name);
/// The lines on which the entries of such a list begin, from 1 on.
std::vector<int> FindListLines(std::string_view text, std::string_view name);

}  // namespace kel
