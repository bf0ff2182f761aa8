#include "probes/storage/StorageDescriptor.h"

#include <windows.h>

#include <winioctl.h>

#include <algorithm>

namespace kel {

namespace {

using Layout = STORAGE_DEVICE_DESCRIPTOR;

constexpr std::size_t FixedPart = 32;  // up to the bus
static_assert(offsetof(Layout, RemovableMedia) == 10 && offsetof(Layout, VendorIdOffset) == 12 &&
              offsetof(Layout, BusType) + sizeof(Layout::BusType) == FixedPart);

// Newer than the headers of some compilers.
constexpr std::uint32_t BusVirtual = 14;
constexpr std::uint32_t BusFileBacked = 15;
constexpr std::uint32_t BusNvme = 17;
constexpr std::uint32_t BusUfs = 19;

/// By STORAGE_BUS_TYPE.
constexpr const wchar_t* BusNames[] = {
    L"",
    L"SCSI",
    L"ATAPI",
    L"ATA",
    L"FireWire",
    L"SSA",
    L"Fibre Channel",
    L"USB",
    L"RAID",
    L"iSCSI",
    L"SAS",
    L"SATA",
    L"SD",
    L"MMC",
    L"virtual",
    L"file-backed virtual",
    L"Storage Spaces",
    L"NVMe",
    L"SCM",
    L"UFS",
};

std::uint32_t Number(Bytes bytes, std::size_t offset)
{
    return static_cast<std::uint32_t>(ReadLittleEndian(bytes, offset, sizeof(DWORD)).value_or(0));
}

}  // namespace

std::optional<StorageDescriptor> ReadStorageDescriptor(Bytes answer)
{
    const std::uint32_t size = Number(answer, offsetof(Layout, Size));
    const Bytes bytes = answer.first(std::min<std::size_t>(answer.size(), size));
    if (bytes.size() < FixedPart)
        return std::nullopt;
    const auto text = [bytes](std::size_t offsetPlace) {
        const std::uint32_t offset = Number(bytes, offsetPlace);
        return offset >= FixedPart ? ReadAscii(bytes, offset) : std::wstring();
    };
    StorageDescriptor descriptor;
    descriptor.vendor = text(offsetof(Layout, VendorIdOffset));
    descriptor.product = text(offsetof(Layout, ProductIdOffset));
    descriptor.revision = text(offsetof(Layout, ProductRevisionOffset));
    descriptor.isRemovable = ReadLittleEndian(bytes, offsetof(Layout, RemovableMedia), 1).value_or(0) != 0;
    descriptor.bus = Number(bytes, offsetof(Layout, BusType));
    return descriptor;
}

std::wstring GetBusName(std::uint32_t bus)
{
    return bus < std::size(BusNames) ? BusNames[bus] : L"";
}

bool IsVirtualBus(std::uint32_t bus)
{
    return bus == BusVirtual || bus == BusFileBacked;
}

std::optional<bool> IsSolidState(std::uint32_t bus, std::optional<bool> seekPenalty)
{
    if (bus == BusNvme || bus == BusTypeSd || bus == BusTypeMmc || bus == BusUfs)
        return true;
    return seekPenalty ? std::optional(!*seekPenalty) : std::nullopt;
}

bool IsRemovableDisk(std::uint32_t bus, bool hasRemovableMedium, bool canUnplug)
{
    return hasRemovableMedium || (canUnplug && (bus == BusTypeUsb || bus == BusType1394));
}

}  // namespace kel
