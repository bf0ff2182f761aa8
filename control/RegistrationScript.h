#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// A text of a key; the one without a name is the key's default.
struct ScriptValue {
    std::wstring name;
    std::wstring text;
};

/// What registration and unregistration do with a key besides creating it, and removing it when it is empty.
enum class KeyRule {
    Plain,
    NoRemove,     ///< the key stays on unregistration
    ForceRemove,  ///< the key is removed with its contents on unregistration, and before registration
};

/// A key of a registration script.
struct ScriptKey {
    std::wstring name;
    KeyRule rule = KeyRule::Plain;
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
///             ForceRemove {class id} = s 'default text'
///             {
///                 val Name = s '%PARAMETER%, 102'
///             }
///         }
///     }
///
/// Names are words without quotes and end at a blank; texts are in single quotes and cannot contain one. The
/// root has keys only.
class RegistrationScript {
public:
    /// Texts by the names between percent signs in the script.
    using Parameters = std::map<std::wstring, std::wstring>;

    /// The keys below the root, with the parameters in their texts.
    /// @throws ScriptError when the script is malformed or names an unknown parameter
    static std::vector<ScriptKey> Parse(std::wstring_view script, const Parameters& parameters);
};

}  // namespace kel
