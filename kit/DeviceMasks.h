#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "masking/Masker.h"

namespace kel::kit {

/// Replaces what distinguishes a device, or names a person, in the lines that are recorded of devices.
class DeviceMasks {
public:
    explicit DeviceMasks(Masker newMasker) : masker(std::move(newMasker)) {}

    /// Gives device instance ids their replacements. The replacements of ids that are learned together sort
    /// as the ids do, since devices of one model are ranked by their ids.
    void Learn(std::vector<std::wstring> instances);

    /// The replacement of an id: its bus and its model stay, and a number takes the place of what may be a
    /// serial number or an address. Empty for an empty id.
    std::string Instance(const std::wstring& id);

    /// A text as a field of a line: without names and addresses, and without bars.
    std::string Text(const std::wstring& text);

    /// A version, whose four numbers are no address.
    std::string Version(const std::wstring& text);

private:
    Masker masker;
    std::map<std::wstring, std::wstring> known;  // by the id in upper case
};

}  // namespace kel::kit
