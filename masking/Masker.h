#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "masking/Findings.h"

namespace kel {

/// Replaces in texts that leave the machine for support what identifies a person or a device: serial numbers,
/// addresses, names of users and machines, and paths below a user's profile. The same text gets the same
/// marker in all texts of one masker, whatever its case: "<serial 1>", "<name 2>", "<address 1>", "<path 1>".
class Masker {
public:
    /// Masks the given names where they stand as whole words, but for those of one character.
    explicit Masker(std::vector<std::wstring> newNames);

    /// With the names of this machine and user, as the system has them.
    static Masker OfSystem();

    /// Keeps a text that looks like an address, such as the version of a program.
    void Keep(const std::wstring& text) { kept.insert(text); }

    std::wstring Mask(std::wstring_view text);

    /// What was masked so far, a marker for each text, to show it to the user.
    std::vector<std::pair<std::wstring, std::wstring>> Markers() const;

private:
    std::optional<Finding> FindAt(std::wstring_view text, std::size_t place) const;
    std::optional<Finding> FindName(std::wstring_view text, std::size_t place) const;
    const std::wstring& MarkerOf(MaskedKind kind, std::wstring_view text);

    std::vector<std::wstring> names;  // in upper case, the longest first
    std::set<std::wstring> kept;
    std::map<std::pair<MaskedKind, std::wstring>, std::wstring> markers;  // by the text in upper case
    std::map<MaskedKind, int> counts;
};

}  // namespace kel
