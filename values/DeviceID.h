#pragma once

#include <cstdint>
#include <string>

#include "values/SharedText.h"
#include "values/Value.h"

namespace kel {

/// The identity of a device, read from a hardware id such as
/// `PCI\VEN_8086&DEV_1916&SUBSYS_07251028&REV_07`, from an instance id, from the registry's matching device
/// id, or made from the numbers of a PCI device. The text and the parts are in upper case, so that all of
/// these give one text. USB, HDAUDIO and ACPI forms are read as well. A missing or malformed part is empty;
/// of a repeated part the last one counts.
class DeviceID : public Value {
public:
    DeviceID() = default;
    /// @param id a hardware id, or a device instance id, whose instance part is dropped, as it can be a
    /// serial number; the address in the id of a Bluetooth device is dropped, too
    explicit DeviceID(const std::wstring& id);
    DeviceID(const DeviceID&) = default;
    DeviceID& operator=(const DeviceID&) = default;

    /// The id of a device from the graphics interfaces' numbers: of a PCI device, or of an ACPI device whose
    /// numbers are four letters each. A subsystem of 0 is unknown; a vendor of 0, or a number that PCI cannot
    /// have, gives the empty id.
    static DeviceID FromNumbers(std::uint32_t vendor, std::uint32_t device, std::uint32_t subsystem,
                                std::uint32_t revision);

    /// The bus or driver that lists the device, such as "PCI"; empty for an id without a backslash.
    std::wstring Bus() const;
    /// Four hexadecimal digits; the vendor's letters for an ACPI id, such as "PNP".
    const std::wstring& Vendor() const { return vendor; }
    /// Four hexadecimal digits.
    const std::wstring& Device() const { return device; }
    /// Eight hexadecimal digits: subsystem, then its vendor.
    const std::wstring& Subsystem() const { return subsystem; }
    /// Two hexadecimal digits, or four for USB and HDAUDIO.
    const std::wstring& Revision() const { return revision; }

    /// Whether the id is not empty.
    bool HasValue() const;

    /// Whether the vendor, or the subsystem's vendor, shows that the device exists only in a driver or
    /// belongs to a virtual machine. False for USB devices, whose vendor numbers come from another list.
    bool IsVirtual() const;

    /// Whether both identify the same kind of device: the same bus, vendor and device, and equal subsystems
    /// and revisions where both have them. Ids without a vendor or a device match when their texts are equal,
    /// empty ones never.
    bool Matches(const DeviceID& other) const;

    /// The id in upper case without its instance part; valid while the object exists unchanged.
    const wchar_t* ToString() const override;

private:
    void ReadParts(const std::wstring& id);

    SharedText text;
    std::wstring vendor;
    std::wstring device;
    std::wstring subsystem;
    std::wstring revision;
};

}  // namespace kel
