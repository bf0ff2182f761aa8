// The graphics adapters, displays and sound devices of a planted machine.
#include "support/PlantedMachine.h"

#include <algorithm>
#include <bit>

#include "support/Edids.h"
#include "values/Text.h"

namespace kel::test {

void PlantedMachine::PlantGraphics()
{
    const std::wstring directX = L"SOFTWARE\\Microsoft\\DirectX";
    if (const std::wstring release = machine.First(L"release"); !release.empty())
        software.machineKeys.Write(directX, L"Version", release);
    for (const std::wstring& line : machine[L"graphics"]) {
        const Lines fields = FieldsOf(line, 11);
        devices.push_back(std::make_unique<PlantedDevice>(DisplayClass, fields[1].c_str()));
        devices.back()
            ->With(SPDRP_HARDWAREID, DeviceID(fields[1]).ToString())
            .With(SPDRP_DEVICEDESC, fields[0])
            .Device(L"MatchingDeviceId", fields[3])
            .Driver(L"DriverVersion", fields[2])
            .InState(fields[6]);
        constexpr const wchar_t* Texts[] = {L"DriverDate", L"VulkanDriverName", L"RadeonSoftwareVersion"};
        for (std::size_t text = 0; text < std::size(Texts); ++text) {
            if (!fields[7 + text].empty())
                devices.back()->Driver(Texts[text], fields[7 + text]);
        }
        if (!fields[10].empty())
            devices.back()->DriverBytes(L"HardwareInformation.ChipType", fields[10]);
        constexpr const wchar_t* Amounts[] = {L"HardwareInformation.qwMemorySize",
                                              L"HardwareInformation.MemorySize"};
        for (std::size_t amount = 0; amount < 2; ++amount) {
            if (!fields[4 + amount].empty())
                devices.back()->Driver(Amounts[amount], NumberOf(fields[4 + amount]) << 20, nullptr);
        }
    }
    for (const std::wstring& line : machine[L"note"]) {
        const Lines fields = FieldsOf(line, 8);
        const auto write = [&](const wchar_t* name, DWORD type, std::uint64_t number) {
            software.machineKeys.Write(directX + L"\\{" + fields[0] + L"}", name, type, &number,
                                       type == REG_QWORD ? 8 : 4);
        };
        write(L"AdapterLuid", REG_QWORD, 7ULL << 32 | NumberOf(fields[0]));
        write(L"DriverVersion", REG_QWORD, fields[7].empty() ? 0x9000800070006 : NumberOf(fields[7], 16));
        write(L"VendorId", REG_DWORD, NumberOf(fields[1], 16));
        write(L"DeviceId", REG_DWORD, NumberOf(fields[2], 16));
        write(L"MaxD3D11FeatureLevel", REG_DWORD, NumberOf(fields[3], 16));
        write(L"DedicatedVideoMemory", REG_QWORD, NumberOf(fields[4]) << 20);
        write(L"MaxD3D12FeatureLevel", REG_DWORD, NumberOf(fields[5], 16));
        software.machineKeys.Write(directX + L"\\{" + fields[0] + L"}", L"Description", fields[6]);
    }
}

void PlantedMachine::PlantDisplays()
{
    for (const std::wstring& line : machine[L"screen"]) {
        const Lines fields = FieldsOf(line, 17);
        const auto number = [&fields](std::size_t place, int base = 10) {
            return static_cast<UINT32>(NumberOf(fields[place], base));
        };
        displays.screens.push_back({number(0),
                                    std::stol(fields[1]),
                                    std::stol(fields[2]),
                                    number(3),
                                    number(4),
                                    {number(5), number(6)},
                                    number(7, 16),
                                    fields[8],
                                    fields[9],
                                    fields[10].empty() ? -1 : std::stoi(fields[10]),
                                    fields[11].empty() ? DISPLAYCONFIG_PIXELFORMAT_32BPP : number(11),
                                    std::bit_cast<LUID>(NumberOf(fields[12], 16))});
        Screen& screen = displays.screens.back();
        screen.preferred.Initialize(fields[13].c_str());
        screen.isHdr2 = fields[14].empty() ? -1 : std::stoi(fields[14]);
        screen.modes = fields[15];
        screen.device = fields[16];
    }
    for (const std::wstring& what : machine[L"displays"]) {
        displays.isRemote |= what == L"remote";
        displays.hasPaths &= what != L"without paths";
        displays.hasDevices &= what != L"without devices";
        displays.shortAnswers += what == L"one more between two calls";
        displays.isUnplugged |= what == L"one fewer between two calls";
    }
    if (const std::wstring name = machine.First(L"device-name"); !name.empty())
        displays.deviceName = name;
    if (const std::wstring dpi = machine.First(L"dpi"); !dpi.empty())
        displays.dpi = static_cast<UINT>(NumberOf(dpi));
    if (const Lines sessions = FieldsOf(machine.First(L"session"), 2); !sessions[0].empty()) {
        const auto own = static_cast<DWORD>(NumberOf(sessions[1]));
        displays.session = static_cast<DWORD>(NumberOf(sessions[0]));
        software.machineKeys.Write(L"SYSTEM\\CurrentControlSet\\Control\\Terminal Server", L"GlassSessionId",
                                   REG_DWORD, &own, sizeof(own));
    }
    for (const std::wstring& line : machine[L"monitor"]) {
        const Lines fields = FieldsOf(line, 3);
        devices.push_back(std::make_unique<PlantedDevice>(MonitorClass, fields[0].c_str()));
        devices.back()->With(SPDRP_FRIENDLYNAME, fields[1]);
        if (!fields[2].empty())
            devices.back()->Device(L"x", L"").Driver(L"MatchingDeviceId", fields[2]);
    }
    static const std::vector<Edid> edids = ReadEdids();
    for (const std::wstring& line : machine[L"edid"]) {
        const Lines fields = FieldsOf(line, 2);
        const auto known = std::ranges::find(edids, Narrow(fields[1]), &Edid::source);
        const Bytes bytes = known != edids.end() ? known->bytes : BytesOf(Narrow(fields[1]));
        software.machineKeys.Write(L"SYSTEM\\CurrentControlSet\\Enum\\" + fields[0] + L"\\Device Parameters",
                                   L"EDID", REG_BINARY, bytes.data(), bytes.size());
    }
}

void PlantedMachine::PlantSound()
{
    wmi.objects.try_emplace(L"SELECT * FROM Win32_SoundDevice", soundDevices.wmi);
    for (const std::wstring& output : machine[L"output*"])
        sound.endpoints.push_back({eRender, output});
    sound.defaultOutput = static_cast<int>(sound.endpoints.size()) - 1;
    for (const std::wstring& output : machine[L"output"])
        sound.endpoints.push_back({eRender, output});
    for (const std::wstring& input : machine[L"input"])
        sound.endpoints.push_back({eCapture, FieldsOf(input, 2)[0], FieldsOf(input, 2)[1]});
    const auto failure = [this](const wchar_t* word, HRESULT otherwise) {
        const std::wstring field = FieldsOf(machine.First(word), 1)[0];
        return field.empty() ? otherwise : static_cast<HRESULT>(NumberOf(field, 16));
    };
    sound.enumerate = failure(L"no-endpoints", S_OK);
    sound.getDefault = failure(L"no-default", HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

}  // namespace kel::test
