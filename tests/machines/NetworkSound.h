// The networks and the sound of five machines, and what is stored of them.
#pragma once

#include <cstddef>
#include <cstring>
#include <sstream>

#include "probes/NetworkInterfaces.h"
#include "support/FakeSound.h"
#include "support/PlantedDevice.h"

namespace kel::test {

/// What people choose and what tells a machine: planted beside the adapters and the endpoints.
constexpr const wchar_t* Personal[] = {L"ANNA", L"0211223344", L"0211-22", L"02-11-22", L"02:11:22"};

/// A line for each device, its fields with bars between them; or a field of such a line.
inline std::vector<std::wstring> Split(const std::wstring& text, wchar_t separator)
{
    std::vector<std::wstring> parts;
    std::wistringstream stream(text);
    for (std::wstring part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

/// Adapters, for the Setup API and in tables of functions. A line has the device's instance id (none for an
/// interface without a device), its name, the interface's type, medium, flags (hardware H, connector C,
/// filter F; on the board B), state and speed. Drivers are 1.0.0, 1.0.1 and so on.
struct PlantedNetwork {
    PlantedNetwork(const wchar_t* lines, DWORD defaultRoute)
    {
        for (const std::wstring& line : Split(lines, L'\n')) {
            const std::vector<std::wstring> fields = Split(line, L'|');
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
            if (fields[0].empty())
                continue;
            auto& device =
                *devices.emplace_back(std::make_unique<PlantedDevice>(0x4D36E972, fields[0].c_str()));
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
        functions.getBestInterface = [defaultRoute](sockaddr*, DWORD* index) {
            return *index = defaultRoute, DWORD{NO_ERROR};
        };
    }

    NetworkFunctions functions;
    std::vector<MIB_IF_ROW2> table;
    std::vector<std::unique_ptr<PlantedDevice>> devices;
};

/// Sound devices, for the Setup API; the first one for WMI, too. A line has the instance id, the name, and
/// the hardware id where it is not the instance's.
struct PlantedSound {
    explicit PlantedSound(const wchar_t* lines)
    {
        for (const std::wstring& line : Split(lines, L'\n')) {
            const std::vector<std::wstring> fields = Split(line, L'|');
            const std::wstring place = std::to_wstring(devices.size());
            auto& device =
                *devices.emplace_back(std::make_unique<PlantedDevice>(0x4D36E96C, fields[0].c_str()));
            device.With(SPDRP_HARDWAREID, fields.size() > 2 ? fields[2] : DeviceID(fields[0]).ToString());
            device.With(SPDRP_DEVICEDESC, fields[1])
                .Device(L"x", L"")
                .Driver(L"DriverVersion", L"1.0." + place);
            if (devices.size() == 1)
                wmi = {{{L"Name", {fields[1].c_str()}}, {L"DeviceID", {fields[0].c_str()}}}};
        }
    }

    std::vector<std::unique_ptr<PlantedDevice>> devices;
    std::vector<FakeObject> wmi;  ///< what Win32_SoundDevice lists
};

struct NetworkSound {
    const char* machine;
    const wchar_t* adapters;
    DWORD defaultRoute;
    const wchar_t* devices;
    std::vector<FakeEndpoint> endpoints;
    int defaultOutput;
    const wchar_t* stored;  ///< the values, by "; " and line ends apart
};

// clang-format off: a line of the texts is a device
inline const NetworkSound NetworkSounds[] = {
    {"gaming laptop",
     LR"(PCI\VEN_10EC&DEV_2600&SUBSYS_16CF1025&REV_03\021122334455|Killer E2600 Gigabit Ethernet Controller|6|14|HC|2|18446744073709551615
PCI\VEN_8086&DEV_51F0&SUBSYS_00948086&REV_01\3&11583659&0&A3|Intel(R) Wi-Fi 6E AX211 160MHz|71|9|HCB|1|1201000000
BTH\MS_BTHPAN\6&2F1E0D9C&0&2|Bluetooth Device (Personal Area Network)|6|10|HC|2|3000000
{5D624F94-8850-40C3-A3FA-A4FD2080BAF3}\VWIFIMP_WFD\5&283223BF&0&11|Microsoft Wi-Fi Direct Virtual Adapter|71|9||2|0
|Software Loopback Interface 1|24|0||1|1073741824)",
     1,
     LR"(HDAUDIO\FUNC_01&VEN_10DE&DEV_009E&SUBSYS_14581546&REV_1001\5&1F18D2A&1&0001|NVIDIA High Definition Audio
HDAUDIO\FUNC_01&VEN_10EC&DEV_0295&SUBSYS_10251438&REV_1000\4&386B8918&0&0001|Realtek(R) Audio
USB\VID_046D&PID_0A87&MI_00\021122334455|PRO X Gaming Headset)",
     {{eRender, LR"({1}.USB\VID_046D&PID_0A87&MI_00\021122334455)"},
      {eRender, LR"({1}.HDAUDIO\FUNC_01&VEN_10EC&DEV_0295&SUBSYS_10251438&REV_1000\4&386b8918&0&0001)"},
      {eCapture, LR"({1}.HDAUDIO\FUNC_01&VEN_10EC&DEV_0295&SUBSYS_10251438&REV_1000\4&386b8918&0&0001)"}},
     0,
     LR"(72700[0]=Yes; 72701[0]=3; 72709[0]=Yes; 72710[0]=Yes
72702[0]=Intel(R) Wi-Fi 6E AX211 160MHz; 72703[0]=PCI\VEN_8086&DEV_51F0&SUBSYS_00948086&REV_01
72704[0]=wireless; 72705[0]=Yes; 72706[0]=1.0.1; 72707[0]=Yes; 72708[0]=1.2 Gbps
72702[1]=Bluetooth Device (Personal Area Network); 72703[1]=BTH\MS_BTHPAN
72704[1]=; 72705[1]=No; 72706[1]=1.0.2; 72707[1]=No; 72708[1]=3.0 Mbps
72702[2]=Killer E2600 Gigabit Ethernet Controller; 72703[2]=PCI\VEN_10EC&DEV_2600&SUBSYS_16CF1025&REV_03
72704[2]=wired; 72705[2]=No; 72706[2]=1.0.0; 72707[2]=No; 72708[2]=
72800[0]=Yes; 72801[0]=3; 72807[0]=2; 72808[0]=1
72802[0]=PRO X Gaming Headset; 72803[0]=USB\VID_046D&PID_0A87&MI_00; 72804[0]=1.0.2; 72805[0]=Yes
72802[1]=Realtek(R) Audio; 72803[1]=HDAUDIO\FUNC_01&VEN_10EC&DEV_0295&SUBSYS_10251438&REV_1000; 72804[1]=1.0.1; 72805[1]=No
72802[2]=NVIDIA High Definition Audio; 72803[2]=HDAUDIO\FUNC_01&VEN_10DE&DEV_009E&SUBSYS_14581546&REV_1001; 72804[2]=1.0.0; 72805[2]=No)"},
    {"old desktop",
     LR"(PCI\VEN_10EC&DEV_8139&SUBSYS_813910EC&REV_10\4&1F7DBC9F&0&08F0|Realtek RTL8139 Family PCI Fast Ethernet NIC|6|0|HC|1|100000000)",
     0,
     LR"(PCI\VEN_1102&DEV_0004&SUBSYS_00511102&REV_03\4&1F7DBC9F&0&18F0|Creative SB Audigy
PCI\VEN_1102&DEV_0002&SUBSYS_80271102&REV_07\4&1F7DBC9F&0&10F0|Creative SB Live! Series)",
     {{eRender, LR"({1}.PCI\VEN_1102&DEV_0004&SUBSYS_00511102&REV_03\4&1F7DBC9F&0&18F0)"}},
     -1,
     LR"(72700[0]=Yes; 72701[0]=1; 72709[0]=Yes; 72710[0]=No
72702[0]=Realtek RTL8139 Family PCI Fast Ethernet NIC; 72703[0]=PCI\VEN_10EC&DEV_8139&SUBSYS_813910EC&REV_10
72704[0]=wired; 72705[0]=No; 72706[0]=1.0.0; 72707[0]=Yes; 72708[0]=100.0 Mbps
72800[0]=Yes; 72801[0]=2; 72807[0]=1; 72808[0]=0
72802[0]=Creative SB Live! Series; 72803[0]=PCI\VEN_1102&DEV_0002&SUBSYS_80271102&REV_07; 72804[0]=1.0.1; 72805[0]=No
72802[1]=Creative SB Audigy; 72803[1]=PCI\VEN_1102&DEV_0004&SUBSYS_00511102&REV_03; 72804[1]=1.0.0; 72805[1]=No)"},
    {"virtual machine over a remote session",
     LR"(VMBUS\{F8615163-DF3E-46C5-913F-F2D2F965ED0E}\{B22F1BF5-12F6-480D-8F16-702AC7BE5CAA}|Microsoft Hyper-V Network Adapter|6|0|HC|1|10000000000
ROOT\KDNIC\0000|Microsoft Kernel Debug Network Adapter|6|14|H|2|0)",
     0,
     L"",
     {{eRender, L""}},
     0,
     LR"(72700[0]=Yes; 72701[0]=1; 72709[0]=Yes; 72710[0]=No
72702[0]=Microsoft Hyper-V Network Adapter; 72703[0]=VMBUS\{F8615163-DF3E-46C5-913F-F2D2F965ED0E}
72704[0]=wired; 72705[0]=No; 72706[0]=1.0.0; 72707[0]=Yes; 72708[0]=10.0 Gbps
72800[0]=Yes; 72801[0]=0; 72807[0]=1; 72808[0]=0; 72802[0]=; 72803[0]=; 72804[0]=; 72805[0]=)"},
    {"tablet",
     LR"(SD\VID_02D0&PID_4330&FN_1\4&33356D82&0&0|Broadcom 802.11n Wireless SDIO Adapter|71|9|HC|2|0
USB\VID_0BDB&PID_1917&CDC_0D&MI_06\6&2A131B9E&1&0006|F5321 gw Mobile Broadband Network Adapter|243|8|HC|1|21600000)",
     9,
     LR"(INTELAUDIO\FUNC_01&VEN_8086&DEV_281F&SUBSYS_80860101&REV_1000\5&1&0&0201|Intel(R) Display Audio
INTELAUDIO\FUNC_01&VEN_10EC&DEV_0274&SUBSYS_10EC112B&REV_1000\5&1&0&0001|Realtek High Definition Audio(SST))",
     {},
     -1,
     LR"(72700[0]=Yes; 72701[0]=2; 72709[0]=No; 72710[0]=Yes
72702[0]=F5321 gw Mobile Broadband Network Adapter; 72703[0]=USB\VID_0BDB&PID_1917&CDC_0D&MI_06
72704[0]=wireless; 72705[0]=No; 72706[0]=1.0.1; 72707[0]=Yes; 72708[0]=21.6 Mbps
72702[1]=Broadcom 802.11n Wireless SDIO Adapter; 72703[1]=SD\VID_02D0&PID_4330&FN_1
72704[1]=wireless; 72705[1]=No; 72706[1]=1.0.0; 72707[1]=No; 72708[1]=
72800[0]=Yes; 72801[0]=2; 72807[0]=0; 72808[0]=0
72802[0]=Realtek High Definition Audio(SST); 72803[0]=INTELAUDIO\FUNC_01&VEN_10EC&DEV_0274&SUBSYS_10EC112B&REV_1000; 72804[0]=1.0.1; 72805[0]=No
72802[1]=Intel(R) Display Audio; 72803[1]=INTELAUDIO\FUNC_01&VEN_8086&DEV_281F&SUBSYS_80860101&REV_1000; 72804[1]=1.0.0; 72805[1]=No)"},
    {"bare server",
     LR"(PCI\VEN_8086&DEV_1521&SUBSYS_00018086&REV_01\021122FFFF334455-00|Intel(R) I350 Gigabit Network Connection|6|14|HC|2|18446744073709551615
PCI\VEN_8086&DEV_1521&SUBSYS_00018086&REV_01\021122FFFF334455-01|Intel(R) I350 Gigabit Network Connection #2|6|14|HC|1|1000000000
|Intel(R) I350-WFP Native MAC Layer LightWeight Filter-0000|6|14|HCF|1|1000000000
ROOT\VMS_MP\0000|Hyper-V Virtual Ethernet Adapter|6|0|H|1|1000000000)",
     3,
     L"",
     {},
     -1,
     LR"(72700[0]=Yes; 72701[0]=2; 72709[0]=Yes; 72710[0]=No
72702[0]=Intel(R) I350 Gigabit Network Connection #2; 72703[0]=PCI\VEN_8086&DEV_1521&SUBSYS_00018086&REV_01
72704[0]=wired; 72705[0]=No; 72706[0]=1.0.1; 72707[0]=Yes; 72708[0]=1.0 Gbps
72702[1]=Intel(R) I350 Gigabit Network Connection; 72703[1]=PCI\VEN_8086&DEV_1521&SUBSYS_00018086&REV_01
72704[1]=wired; 72705[1]=No; 72706[1]=1.0.0; 72707[1]=No; 72708[1]=
72800[0]=No; 72801[0]=0; 72807[0]=0; 72808[0]=0; 72802[0]=; 72803[0]=; 72804[0]=; 72805[0]=)"},
};
// clang-format on

}  // namespace kel::test
