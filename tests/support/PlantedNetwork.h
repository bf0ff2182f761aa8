// A machine's network adapters and sound devices, planted.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>

#include "probes/NetworkInterfaces.h"
#include "support/FakeWmi.h"
#include "support/PlantedDevice.h"
#include "support/Split.h"
#include "values/DeviceID.h"

namespace kel::test {

/// Adapters, for the Setup API and in tables of functions. A line: instance id of its device (none for an
/// interface without one), name, type and medium of the interface, flags (hardware H, connector C, filter F,
/// on the board B, default route R), state, speed. Drivers are 1.0.0, 1.0.1 and so on.
struct PlantedNetwork {
    explicit PlantedNetwork(const Lines& lines)
    {
        for (const std::wstring& line : lines) {
            const Lines fields = Split(line, L'|');
            const auto has = [&fields](wchar_t flag) { return fields[4].find(flag) != std::wstring::npos; };
            const std::wstring place = std::to_wstring(table.size());
            auto& row = table.emplace_back();
            row.InterfaceIndex = row.InterfaceGuid.Data1 = static_cast<DWORD>(table.size() - 1);
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
            device.With(SPDRP_DEVICEDESC, fields[1]).With(SPDRP_HARDWAREID, DeviceID(fields[0]).ToString());
            device.With(SPDRP_LOCATION_INFORMATION, has(L'B') ? L"PCI bus 0, device 31" : L"Port 1");
            device.Driver(L"DriverVersion", L"1.0." + place);
            device.Driver(L"NetCfgInstanceId", L"{" + std::wstring(8 - place.size(), L'0') + place +
                                                   L"-0000-0000-0000-000000000000}");
        }
        functions.getTable = [this](MIB_IF_TABLE2** result) {
            const std::size_t size = table.size() * sizeof(MIB_IF_ROW2);
            *result = static_cast<MIB_IF_TABLE2*>(malloc(offsetof(MIB_IF_TABLE2, Table) + size));
            (*result)->NumEntries = static_cast<ULONG>(table.size());
            memcpy(&(*result)->Table[0], table.data(), size);
            return DWORD{NO_ERROR};
        };
        functions.freeTable = &free;
        functions.getBestInterface = [this](sockaddr*, DWORD* index) {
            return *index = route, DWORD{NO_ERROR};
        };
    }

    NetworkFunctions functions;
    DWORD route = 99;  ///< one that is not in the table
    std::vector<MIB_IF_ROW2> table;
    std::vector<std::unique_ptr<PlantedDevice>> devices;
};

/// Sound devices, for the Setup API; the first one for WMI, too. A line: instance id, name, and the hardware
/// id where it is not the instance's. Bluetooth devices have names that people chose.
struct PlantedSound {
    explicit PlantedSound(const Lines& lines)
    {
        for (const std::wstring& line : lines) {
            Lines fields = Split(line, L'|');
            fields.resize(3);
            const std::wstring place = std::to_wstring(devices.size());
            auto& device =
                *devices.emplace_back(std::make_unique<PlantedDevice>(SoundClass, fields[0].c_str()));
            device.With(SPDRP_HARDWAREID, !fields[2].empty() ? fields[2] : DeviceID(fields[0]).ToString());
            device.With(SPDRP_DEVICEDESC, fields[1])
                .Device(L"x", L"")
                .Driver(L"DriverVersion", L"1.0." + place);
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
