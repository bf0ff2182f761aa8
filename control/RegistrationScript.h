#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kel {

/// A value of a registration script: a text, in which %NAME% stands for a parameter, or a number.
using ScriptData = std::variant<std::wstring, std::uint32_t>;

/// A named value of a key.
struct ScriptValue {
    std::wstring name;
    ScriptData data;
};

/// What registration and unregistration do with a key beyond creating it and removing it when it has become
/// empty.
enum class KeyRule {
    Plain,
    NoRemove,     ///< the key stays on unregistration
    ForceRemove,  ///< the key goes whole on unregistration, and before registration
    Delete,       ///< the key is removed whole on registration
};

/// A key of a registration script.
struct ScriptKey {
    std::wstring name;
    KeyRule rule = KeyRule::Plain;
    std::optional<ScriptData> defaultValue;
    std::vector<ScriptValue> values;
    std::vector<ScriptKey> keys;
};

/// A malformed script; the message names the line.
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads registration scripts:
///
///     HKCR
///     {
///         NoRemove CLSID
///         {
///             ForceRemove {class id} = s 'text'
///             {
///                 val Name = d '1'
///             }
///         }
///     }
///
/// Names and texts may stand in single quotes, in which a quote is doubled. Types are s (string) and d
/// (number, decimal or &H or 0x hexadecimal). The root takes keys only.
class RegistrationScript {
public:
    /// The keys below the root.
    /// @throws ScriptError when the script is malformed or more than 32 braces are open, the root's among
    /// them
    static std::vector<ScriptKey> Parse(std::wstring_view text);
};

}  // namespace kel
