#include "kit/RecordedNetwork.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>

#include "kit/Text.h"
#include "service/Utf8.h"
#include "values/DeviceID.h"
#include "values/Text.h"

namespace kel::kit {

namespace {

using Lines = std::vector<std::string>;

constexpr const wchar_t* ConnectionKeys =
    L"SYSTEM\\CurrentControlSet\\Control\\Network\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\";

/// An adapter as both sources have it; without a row for a device that has no interface.
struct Adapter {
    std::wstring instance;
    std::string device;  // the fields of the device
    std::optional<DWORD> mediaSubType;
    std::optional<MIB_IF_ROW2> row;
};

std::wstring TextOf(const GUID& guid)
{
    std::array<wchar_t, 39> text = {};
    StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
    return ToUpper(text.data());
}

std::optional<DWORD> ReadMediaSubType(const std::wstring& interfaceId)
{
    const OwnedKey key =
        OpenKey(HKEY_LOCAL_MACHINE, (ConnectionKeys + interfaceId + L"\\Connection").c_str(), KEY_READ);
    const std::optional<RegistryValue> value = key ? ReadValue(key.get(), L"MediaSubType") : std::nullopt;
    DWORD number = 0;
    if (!value || value->type != REG_DWORD || value->bytes.size() != sizeof(number))
        return {};
    std::ranges::copy(value->bytes, reinterpret_cast<BYTE*>(&number));
    return number;
}

bool IsOfSoftware(const std::wstring& instance)
{
    const std::wstring bus = DeviceID(instance).Bus();
    return bus == L"ROOT" || bus == L"SWD";
}

/// By the GUID of its interface, which also ranks them.
using Adapters = std::map<std::wstring, Adapter>;

/// @param ofSoftware the interfaces of devices that exist in a driver only
Adapters ListDevices(DeviceMasks& masks, std::set<std::wstring>& ofSoftware)
{
    Adapters adapters;
    std::vector<std::wstring> instances;
    VisitDevices(RecordedClass::Network, [&](const SetupDevice& device, HKEY driver) {
        const std::wstring instance = device.InstanceId();
        const std::wstring id = ToUpper(DriverText(driver, L"NetCfgInstanceId"));
        if (IsOfSoftware(instance)) {
            ofSoftware.insert(id);
            return;
        }
        instances.push_back(instance);
        Adapter& adapter = adapters[!id.empty() ? id : L"without an interface: " + instance];
        const std::string version = masks.Version(DriverText(driver, L"DriverVersion"));
        adapter.instance = instance;
        adapter.mediaSubType = id.empty() ? std::nullopt : ReadMediaSubType(id);
        adapter.device = Field("driver", masks.Text(device.DeviceName().ToString())) +
                         Field("hardware", masks.Text(device.Text(SPDRP_HARDWAREID).ToString())) +
                         Field("version", version.empty() ? "none" : version) +
                         Field("container", ContainerOf(device)) +
                         Field("problem", device.IsWorking() ? "" : "off");
    });
    masks.Learn(instances);
    return adapters;
}

NET_IF_MEDIA_CONNECT_STATE StateOf(const MIB_IF_ROW2& row)
{
    if (row.MediaConnectState != MediaConnectStateUnknown)
        return row.MediaConnectState;
    switch (row.OperStatus) {
        case IfOperStatusUp:
            return MediaConnectStateConnected;
        case IfOperStatusDown:
        case IfOperStatusNotPresent:
        case IfOperStatusLowerLayerDown:
            return MediaConnectStateDisconnected;
        default:
            return MediaConnectStateUnknown;
    }
}

std::string RowFields(const MIB_IF_ROW2& row, bool isRoute, DeviceMasks& masks)
{
    const auto& found = row.InterfaceAndOperStatusFlags;
    std::string flags = found.HardwareInterface ? "H" : "";
    flags += found.ConnectorPresent ? "C" : "";
    flags += isRoute ? "R" : "";
    return Field("name",
                 masks.Text({row.Description, wcsnlen(row.Description, std::size(row.Description))})) +
           Field("type", std::to_string(row.Type)) +
           Field("medium", std::to_string(static_cast<int>(row.PhysicalMediumType))) + Field("flags", flags) +
           Field("state", std::to_string(static_cast<int>(StateOf(row)))) +
           Field("speed", std::to_string(row.TransmitLinkSpeed));
}

/// The kind in the key of an adapter's connection; a recorded adapter's place is its interface's GUID.
std::string KindLine(std::size_t place, DWORD mediaSubType)
{
    return "value " + ToUtf8(ConnectionKeys) + "{" + Hex(static_cast<DWORD>(place), 8) +
           "-0000-0000-0000-000000000000}\\Connection|MediaSubType|#" + std::to_string(mediaSubType);
}

}  // namespace

Lines RecordNetwork(const DeviceEdges& edges, DeviceMasks& masks)
{
    const NetworkFunctions& functions = edges.network;
    MIB_IF_TABLE2* read = nullptr;
    if (!functions.getTable || !functions.freeTable || functions.getTable(&read) != NO_ERROR ||
        read == nullptr)
        return {};
    const std::unique_ptr<MIB_IF_TABLE2, boost::function<void(void*)>> table(read, functions.freeTable);
    std::set<std::wstring> ofSoftware;
    Adapters adapters = ListDevices(masks, ofSoftware);
    for (const MIB_IF_ROW2& row : std::span(&table->Table[0], table->NumEntries)) {
        const std::wstring id = TextOf(row.InterfaceGuid);
        if (!row.InterfaceAndOperStatusFlags.FilterInterface && !ofSoftware.contains(id) &&
            (adapters.contains(id) || row.InterfaceAndOperStatusFlags.HardwareInterface))
            adapters[id].row = row;
    }
    const std::optional<DWORD> route = FindDefaultRoute(functions);
    Lines lines;
    Lines kinds;
    for (const auto& [id, adapter] : adapters) {
        const std::string fields = adapter.row
                                       ? RowFields(*adapter.row, adapter.row->InterfaceIndex == route, masks)
                                       : "|type=0|medium=0|flags=T|state=0|speed=0";
        const std::string instance = masks.Instance(adapter.instance);
        if (adapter.mediaSubType)
            kinds.push_back(KindLine(lines.size(), *adapter.mediaSubType));
        lines.push_back("adapter " + (Field("instance", instance) + fields + adapter.device).substr(1));
    }
    lines.insert(lines.end(), kinds.begin(), kinds.end());
    return lines;
}

}  // namespace kel::kit
