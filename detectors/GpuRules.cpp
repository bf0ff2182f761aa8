#include "detectors/GpuRules.h"

#include <algorithm>
#include <tuple>
#include <vector>

#include "values/Text.h"
#include "values/VirtualNames.h"

namespace kel {

namespace {

constexpr const wchar_t* Nvidia = L"10DE";
constexpr const wchar_t* Amd = L"1002";
constexpr const wchar_t* Intel = L"8086";
constexpr const wchar_t* NoVendor = L"0000";
constexpr std::uint64_t SmallMemory = 512ULL << 20;
/// The system keeps at most a tenth of the memory for itself.
constexpr std::uint64_t MaxReservedPart = 10;
constexpr std::size_t VersionFields = 4;
constexpr std::size_t ThirdFieldDigits = 2;
constexpr std::size_t LastFieldDigits = 4;

std::uint64_t Quantity(const std::optional<Version>& version)
{
    return version ? version->Quantity() : 0;
}

std::uint64_t Bytes(const std::optional<Size>& size)
{
    return size ? size->Bytes() : 0;
}

}  // namespace

bool IsExcludedAdapter(const GpuInfo& adapter)
{
    const DeviceID& id = adapter.deviceId;
    if (adapter.isSoftware || !id.HasValue())
        return adapter.isSoftware;
    const std::wstring bus = id.Bus();
    const bool hasVendor = !id.Vendor().empty() && id.Vendor() != NoVendor;
    // Windows' own renderer does not always have the software flag.
    const bool isRenderer = id.Vendor() == L"1414" && id.Device() == L"008C";
    return isRenderer || bus == L"ROOT" || bus == L"SWD" || bus == L"USB" || (!hasVendor && bus != L"VMBUS");
}

std::optional<Version> VendorDriverVersion(const GpuInfo& adapter)
{
    if (adapter.deviceId.Vendor() != Nvidia || !adapter.driverVersion)
        return {};
    const std::vector<std::wstring_view> fields = Split(adapter.driverVersion->ToString(), L'.');
    // Windows' own driver may serve the card; the third field of its version is a longer number.
    if (fields.size() != VersionFields || fields[2].size() != ThirdFieldDigits || fields[3].empty() ||
        fields[3].size() > LastFieldDigits)
        return {};
    std::wstring digits(1, fields[2].back());
    digits.append(LastFieldDigits - fields[3].size(), L'0').append(fields[3]);
    if (digits.find_first_not_of(L"0123456789") != std::wstring::npos)
        return {};
    digits.insert(3, L".");
    return Version(digits.substr(digits.front() == L'0' ? 1 : 0));
}

std::optional<bool> IsIntegrated(const GpuInfo& adapter)
{
    if (Bytes(adapter.videoMemory) <= SmallMemory && adapter.sharedMemory)
        return true;
    const std::wstring name = adapter.description.ToString();
    if (adapter.deviceId.Vendor() == Intel && name.find(L"Arc") == std::wstring::npos)
        return true;
    return adapter.videoMemory ? std::optional(false) : std::nullopt;
}

void CorrectMemory(GpuInfo& adapter)
{
    const std::uint64_t reported = Bytes(adapter.videoMemory);
    const std::uint64_t written = Bytes(adapter.driverMemory);
    if (written > reported && written - reported <= reported / MaxReservedPart)
        adapter.videoMemory = adapter.driverMemory;
}

void FinishGpuInfo(GpuInfo& adapter)
{
    CorrectMemory(adapter);
    if (!adapter.vendorVersion)
        adapter.vendorVersion = VendorDriverVersion(adapter);
    if (!adapter.isIntegrated)
        adapter.isIntegrated = IsIntegrated(adapter);
    if (!adapter.deviceId.HasValue())
        return;
    const std::wstring& vendor = adapter.deviceId.Vendor();
    adapter.isNvidia = vendor == Nvidia;
    adapter.isAmd = vendor == Amd;
    adapter.isIntel = vendor == Intel;
    adapter.isVirtual = adapter.deviceId.IsVirtual() || IsVirtualName(adapter.description.ToString());
}

bool IsBetterAdapter(const GpuInfo& one, const GpuInfo& other)
{
    // The better adapter sorts first, so memory and level are negated.
    const auto rank = [](const GpuInfo& adapter) {
        return std::tuple(!adapter.hasDirect3D, adapter.isVirtual.value_or(false),
                          adapter.isIntegrated.value_or(false), ~Bytes(adapter.videoMemory),
                          ~Quantity(adapter.featureLevel), std::wstring(adapter.deviceId.ToString()),
                          adapter.instanceId, adapter.luid);
    };
    return rank(one) < rank(other);
}

}  // namespace kel
