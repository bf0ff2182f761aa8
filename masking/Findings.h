// What identifies a person, a machine or a device in a text.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kel {

/// Whether a character is a letter or digit, so that a word goes on with it.
bool IsWordPart(wchar_t character);

enum class MaskedKind { Serial, Name, Address, Path };

/// A part of a text that must not leave the machine.
struct Finding {
    MaskedKind kind;
    std::size_t start;  ///< at or behind the place that was looked at
    std::size_t length;
};

/// What a rule finds at a place of a text at which a word may begin.
using FindingRule = std::optional<Finding>(std::wstring_view text, std::size_t place);

/// A path below the folder of a user's profile: "C:\Users\Anna\x.dll", to the end of the line or a mark that
/// no path holds.
FindingRule FindProfilePath;

/// A path on another machine: "\\server\share\x".
FindingRule FindNetworkPath;

/// The instance part of a device's id or of its interface path, which can be a serial number or an address:
/// what follows "USBSTOR\DISK&VEN_X\".
FindingRule FindInstance;

/// What follows the words "serial number" and a colon or an equals sign.
FindingRule FindSerialNumber;

/// The address of a network card or a radio: "02-11-22-33-44-55", also with colons or without marks.
FindingRule FindHardwareAddress;

/// An IP address of version 4; versions of programs can look like one.
FindingRule FindAddress4;

/// An IP address of version 6.
FindingRule FindAddress6;

}  // namespace kel
