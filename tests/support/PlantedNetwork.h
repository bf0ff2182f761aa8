// A machine's network adapters and sound devices, planted.
#pragma once

#include <ws2tcpip.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

#include "probes/network/NetworkInterfaces.h"
#include "support/FakeWmi.h"
#include "support/Machines.h"
#include "support/PlantedDevice.h"
#include "values/DeviceID.h"
#include "values/Hexadecimal.h"

namespace kel::test {

/// Adapters, for the Setup API and in tables of functions. A line: instance id of its device (none for an
/// interface without one), name, type and medium of the interface, flags (hardware H, connector C, filter F,
/// default route R, no name among the addresses N, none of the device D, no interface T), state, speed, then
/// the device's container, problem, name, hardware id and driver. Drivers are 1.0.0, 1.0.1 and so on, where
/// they have no other version.
struct PlantedNetwork {
    explicit PlantedNetwork(const Lines& lines)
    {
        for (const std::wstring& line : lines) {
            const Lines fields = FieldsOf(line, 12);
            const auto has = [&fields](wchar_t flag) { return fields[4].find(flag) != std::wstring::npos; };
            const std::wstring place = std::to_wstring(table.size());
            auto& row = table.emplace_back();
            row.InterfaceIndex = row.InterfaceGuid.Data1 = static_cast<DWORD>(table.size() - 1);
            names.push_back("{" + Narrow(Hexadecimal(row.InterfaceIndex, 8)) +
                            "-0000-0000-0000-000000000000}");
            isNameless.push_back(has(L'N'));
            isUnlisted.push_back(has(L'T'));
            wcscpy(row.Alias, L"Anna's network");
            wcscpy(row.Description, fields[1].c_str());
            memcpy(row.PhysicalAddress, "\x02\x11\x22\x33\x44\x55", row.PhysicalAddressLength = 6);
            row.Type = std::stoul(fields[2]);
            row.PhysicalMediumType = static_cast<NDIS_PHYSICAL_MEDIUM>(std::stoi(fields[3]));
            row.InterfaceAndOperStatusFlags.HardwareInterface = has(L'H');
            row.InterfaceAndOperStatusFlags.ConnectorPresent = has(L'C');
            row.InterfaceAndOperStatusFlags.FilterInterface = has(L'F');
            row.MediaConnectState = static_cast<NET_IF_MEDIA_CONNECT_STATE>(std::stoi(fields[5]));
            row.TransmitLinkSpeed = std::stoull(fields[6]);
            if (has(L'R'))
                route = row.InterfaceIndex;
            if (fields[0].empty())
                continue;
            auto& device =
                *devices.emplace_back(std::make_unique<PlantedDevice>(NetworkClass, fields[0].c_str()));
            const std::wstring name = !fields[9].empty() ? fields[9] : fields[1];
            device.With(SPDRP_DEVICEDESC, has(L'D') ? L"" : name)
                .With(SPDRP_HARDWAREID, !fields[10].empty() ? fields[10] : DeviceID(fields[0]).ToString());
            device.Driver(L"DriverVersion", VersionOf(fields[11], place))
                .InContainer(fields[7])
                .InState(fields[8]);
            device.Driver(L"NetCfgInstanceId", {names.back().begin(), names.back().end()});
        }
        functions.getTable = [this](MIB_IF_TABLE2** result) {
            const std::vector<MIB_IF_ROW2> rows = ListedRows();
            const std::size_t size = rows.size() * sizeof(MIB_IF_ROW2);
            *result = static_cast<MIB_IF_TABLE2*>(malloc(offsetof(MIB_IF_TABLE2, Table) + size));
            (*result)->NumEntries = static_cast<ULONG>(rows.size());
            memcpy(&(*result)->Table[0], rows.data(), size);
            return DWORD{NO_ERROR};
        };
        functions.freeTable = &free;
        functions.getAddresses = [this](ULONG family, ULONG flags, void*, IP_ADAPTER_ADDRESSES* list,
                                        ULONG* size) { return ListAddresses(family, flags, list, size); };
        functions.getBestInterface = [this](const sockaddr* address, DWORD* index) -> DWORD {
            // Addresses that are kept for documents lead nowhere.
            const bool isLong = address->sa_family == AF_INET6;
            isMisused |= (!isLong && address->sa_family != AF_INET) ||
                         memcmp(address->sa_data + (isLong ? 6 : 2),
                                isLong ? "\x20\x01\x0D\xB8" : "\xC0\0\2\1", 4) != 0;
            if (isLong && !longRoute.empty())
                return *index = static_cast<DWORD>(NumberOf(longRoute)), NO_ERROR;
            return *index = route, routeError;
        };
    }

    /// Has functions fail: "table" and "route" with an error, or "missing"; "table" also "throws";
    /// "addresses" grow between the given number of calls, are missing, or fail with an "error".
    void Break(const Machine& machine)
    {
        const std::wstring tableFault = machine.First(L"table"), routeFault = machine.First(L"route"),
                           addressFault = machine.First(L"addresses");
        if (tableFault == L"throws")
            functions.getTable = [](auto) -> DWORD { throw 1; };
        else if (tableFault == L"missing")
            functions.getTable.clear();
        else if (!tableFault.empty())
            functions.getTable = [error = NumberOf(tableFault)](auto) { return static_cast<DWORD>(error); };
        if (addressFault == L"missing")
            functions.getAddresses.clear();
        else if (addressFault.starts_with(L"error "))
            functions.getAddresses = [error = NumberOf(addressFault.substr(6))](
                                         auto, auto, auto, auto, auto) { return static_cast<ULONG>(error); };
        else
            growth = static_cast<int>(NumberOf(addressFault));
        if (routeFault == L"missing")
            functions.getBestInterface.clear();
        else if (!routeFault.empty())
            routeError = static_cast<DWORD>(NumberOf(routeFault));
        longRoute = machine.First(L"long-route");
    }

    /// Lists the interfaces in the opposite order.
    void Reverse() { std::ranges::reverse(table); }

    bool isMisused = false;  ///< a call would have asked for lists, or sent something
    NetworkFunctions functions;
    DWORD route = 99;  ///< one that is not in the table
    std::vector<MIB_IF_ROW2> table;
    std::vector<std::unique_ptr<PlantedDevice>> devices;

private:
    static std::wstring VersionOf(const std::wstring& field, const std::wstring& place)
    {
        return field.empty() ? L"1.0." + place : field == L"none" ? L"" : field;
    }

    /// The interfaces, without the devices that have none.
    std::vector<MIB_IF_ROW2> ListedRows() const
    {
        std::vector<MIB_IF_ROW2> rows = table;
        std::erase_if(rows, [this](const MIB_IF_ROW2& row) { return isUnlisted[row.InterfaceIndex]; });
        return rows;
    }

    /// The table's facts about each interface, except its medium.
    ULONG ListAddresses(ULONG family, ULONG flags, IP_ADAPTER_ADDRESSES* list, ULONG* size)
    {
        constexpr ULONG WithoutLists = 0x2F;
        isMisused |= family != AF_UNSPEC || flags != WithoutLists;
        const std::vector<MIB_IF_ROW2> rows = ListedRows();
        if (rows.empty())
            return ERROR_NO_DATA;
        const ULONG needed = static_cast<ULONG>(rows.size() * sizeof(*list));
        if (growth-- > 0 || *size < needed) {
            *size += 20000;
            return ERROR_BUFFER_OVERFLOW;
        }
        static IP_ADAPTER_UNICAST_ADDRESS_LH unicast = {};
        static sockaddr_in address = {AF_INET, 0, {{{192, 0, 2, 77}}}, {}};
        unicast.Address = {reinterpret_cast<sockaddr*>(&address), sizeof(address)};
        for (std::size_t place = 0; place < rows.size(); ++place) {
            MIB_IF_ROW2& row =
                *std::ranges::find(table, rows[place].InterfaceIndex, &MIB_IF_ROW2::InterfaceIndex);
            IP_ADAPTER_ADDRESSES& one = list[place] = {};
            one.Next = place + 1 < rows.size() ? &list[place + 1] : nullptr;
            one.IfIndex = one.Ipv6IfIndex = row.InterfaceIndex;
            one.AdapterName = isNameless[row.InterfaceIndex] ? nullptr : names[row.InterfaceIndex].data();
            one.Description = row.Description;
            one.FriendlyName = one.DnsSuffix = row.Alias;
            one.FirstUnicastAddress = &unicast;
            memcpy(one.PhysicalAddress, row.PhysicalAddress, one.PhysicalAddressLength = 6);
            one.IfType = row.Type;
            one.TransmitLinkSpeed = row.TransmitLinkSpeed;
            one.OperStatus = row.MediaConnectState == MediaConnectStateConnected      ? IfOperStatusUp
                             : row.MediaConnectState == MediaConnectStateDisconnected ? IfOperStatusDown
                                                                                      : IfOperStatusTesting;
        }
        return NO_ERROR;
    }

    int growth = 0;
    DWORD routeError = NO_ERROR;
    std::wstring longRoute;  ///< the interface that long addresses are reached by
    std::vector<std::string> names;
    std::vector<bool> isNameless, isUnlisted;
};

/// Sound devices, for the Setup API; the first one for WMI, too. A line: instance id, name, the hardware id
/// where it is not the instance's, state, and the driver's version. Bluetooth devices have names that people
/// chose.
struct PlantedSound {
    explicit PlantedSound(const Lines& lines)
    {
        for (const std::wstring& line : lines) {
            const Lines fields = FieldsOf(line, 5);
            const std::wstring place = std::to_wstring(devices.size());
            auto& device =
                *devices.emplace_back(std::make_unique<PlantedDevice>(SoundClass, fields[0].c_str()));
            device.With(SPDRP_HARDWAREID, !fields[2].empty() ? fields[2] : DeviceID(fields[0]).ToString());
            device.With(SPDRP_DEVICEDESC, fields[1])
                .Device(L"x", L"")
                .Driver(L"DriverVersion", fields[4].empty()      ? L"1.0." + place
                                          : fields[4] == L"none" ? L""
                                                                 : fields[4])
                .InState(fields[3]);
            const bool isBluetooth = fields[0].starts_with(L"BTH");
            if (isBluetooth)
                device.With(SPDRP_FRIENDLYNAME, L"Anna's headset");
            if (devices.size() == 1)
                wmi = {{{L"Name", {isBluetooth ? L"Anna's headset" : fields[1].c_str()}},
                        {L"DeviceID", {fields[0].c_str()}}}};
        }
    }

    std::vector<std::unique_ptr<PlantedDevice>> devices;
    std::vector<WmiProperties> wmi;  ///< what Win32_SoundDevice lists
};

}  // namespace kel::test
