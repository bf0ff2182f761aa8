#pragma once

#include <string>

#include "values/SharedText.h"
#include "values/Value.h"

namespace kel {

/// The identity of a device, read from a hardware id such as
/// `PCI\VEN_8086&DEV_1916&SUBSYS_07251028&REV_07`. USB, HDAUDIO and ACPI forms are read as well. The parts
/// are in upper case; a part that the id lacks, or that is malformed, is empty. Of a part that is there twice
/// the last one counts.
class DeviceID : public Value {
public:
    DeviceID() = default;
    /// @param id a hardware id, or a device instance id, whose instance part is dropped: it can be a serial
    /// number
    explicit DeviceID(const std::wstring& id);
    DeviceID(const DeviceID&) = default;
    DeviceID& operator=(const DeviceID&) = default;

    /// Four hexadecimal digits; the maker's letters for an ACPI id, such as "PNP".
    const std::wstring& Vendor() const { return vendor; }
    /// Four hexadecimal digits.
    const std::wstring& Device() const { return device; }
    /// Eight hexadecimal digits: subsystem, then its vendor.
    const std::wstring& Subsystem() const { return subsystem; }
    /// Two hexadecimal digits, or four for USB and HDAUDIO.
    const std::wstring& Revision() const { return revision; }

    /// Whether an id was read that is not empty.
    bool HasValue() const;

    /// The id as it was found, less its instance part; valid as long as the object is alive and unchanged.
    const wchar_t* ToString() const override;

private:
    void ReadParts(const std::wstring& upperCaseId);

    SharedText text;
    std::wstring vendor;
    std::wstring device;
    std::wstring subsystem;
    std::wstring revision;
};

}  // namespace kel
