#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "verdict/LocalText.h"
#include "verdict/Requirements.h"

namespace kel {

// Members of an object in a file of requirements. What is wrong with them is thrown as RequirementsError,
// with the path from that object on.

/// The text in quotation marks, shortened, for a reason.
std::string Quoted(std::string_view text);

/// Whether the text is not empty and has none but these characters.
bool HasOnly(std::string_view text, std::string_view characters);

/// Throws unless the entry is an object of these names: a misspelt one would change what the line means.
void CheckNames(const nlohmann::json& entry, std::span<const std::string_view> names);

/// The member of that name; throws when there is none.
const nlohmann::json& Required(const nlohmann::json& entry, const std::string& name);

/// A text of at most Requirements::MaxText bytes that XML allows.
std::string ReadText(const nlohmann::json& entry, const std::string& name);

/// A text, or an object with a text for each language.
LocalText ReadLocalText(const nlohmann::json& entry, const std::string& name);

/// A list of `min` to `max` entries.
const nlohmann::json& ReadList(const nlohmann::json& entry, const std::string& name, std::size_t min,
                               std::size_t max);

/// Reads each entry of the list that is a member of that name; the reason for a wrong one begins with the
/// kind and its number. With `errors` it is added to them, and the entry is left empty.
template <typename Read>
auto ReadEach(const nlohmann::json& list, const std::string& name, const std::string& kind, Read read,
              std::vector<RequirementsError>* errors = nullptr)
{
    std::vector<decltype(read(list))> entries;
    for (const nlohmann::json& entry : list) {
        try {
            entries.push_back(read(entry));
        } catch (const RequirementsError& error) {
            JsonPath path{name, std::to_string(entries.size())};
            path.insert(path.end(), error.path.begin(), error.path.end());
            const RequirementsError whole(
                kind + " " + std::to_string(entries.size() + 1) + ": " + error.what(), std::move(path));
            if (!errors)
                throw whole;
            errors->push_back(whole);
            entries.emplace_back();
        }
    }
    return entries;
}

}  // namespace kel
