#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "detectors/Adapters.h"
#include "detectors/Detectors.h"
#include "machines/Displays.h"
#include "machines/Graphics.h"
#include "probes/AdapterCache.h"
#include "probes/DisplayConfig.h"
#include "probes/SetupLib.h"
#include "support/Edids.h"
#include "support/LogCapture.h"
#include "support/PlantedDevice.h"
#include "support/ScratchKey.h"
#include "support/TestSession.h"

namespace kel {
namespace {

using Lines = std::vector<std::wstring>;

/// Of each index what is stored under the ids of a range, with bars between.
Lines Stored(const test::TestSession& session, unsigned first, unsigned last)
{
    std::map<int, std::wstring> lines;
    for (const SystemValue& value : session.values) {
        const unsigned number = value.ID().Group().Number();
        if (number < first || number > last)
            continue;
        const auto [line, isNew] = lines.try_emplace(value.ID().Index());
        line->second += (isNew ? L"" : L"|") + value.Text();
    }
    Lines shown;
    for (const auto& [index, line] : lines)
        shown.push_back(line);
    return shown;
}

/// Nothing of what is planted that tells one device from its equals: in instance ids, and a monitor's serial
/// number, in its two forms.
void ExpectNothingPersonal(const test::TestSession& session)
{
    for (const SystemValue& value : session.values) {
        for (const wchar_t* planted : {L"ANNA", L"G3D7F68O0LLB", L"810306626"})
            EXPECT_EQ(value.Text().find(planted), std::wstring::npos) << value.Text();
    }
}

/// A machine's adapters, behind all of the probes that list them.
class PlantedGraphics {
public:
    explicit PlantedGraphics(const test::GraphicsMachine& machine) : fake(machine.cards)
    {
        for (const auto& device : machine.devices) {
            auto& planted =
                *devices.emplace_back(std::make_unique<test::PlantedDevice>(0x4D36E968, device[1].c_str()));
            planted.With(SPDRP_DEVICEDESC, device[0]).With(SPDRP_HARDWAREID, DeviceID(device[1]).ToString());
            planted.Device(L"MatchingDeviceId", device[3]).Driver(L"DriverVersion", device[2]);
        }
        for (const auto& note : machine.notes) {
            const std::wstring key = L"SOFTWARE\\Microsoft\\DirectX\\{" + note[0] + L"}";
            const auto write = [&](const wchar_t* name, DWORD type, std::uint64_t number) {
                registry.Write(key, name, type, &number, type == REG_QWORD ? 8 : 4);
            };
            write(L"AdapterLuid", REG_QWORD, 7ULL << 32 | std::stoul(note[0]));
            write(L"DriverVersion", REG_QWORD, 0x9000800070006);
            write(L"VendorId", REG_DWORD, std::stoul(note[1], nullptr, 16));
            write(L"DeviceId", REG_DWORD, std::stoul(note[2], nullptr, 16));
            write(L"MaxD3D11FeatureLevel", REG_DWORD, std::stoul(note[3], nullptr, 16));
        }
        registry.Write(L"SOFTWARE\\Microsoft\\DirectX", L"Version", L"4.09.00.0904");
        for (const auto& setting : machine.settings)
            fake.Set(setting[0], setting[1]);
    }

private:
    test::ScratchKey registry{HKEY_LOCAL_MACHINE};
    std::vector<std::unique_ptr<test::PlantedDevice>> devices;

public:
    test::FakeGraphics fake;
    const GraphicsFunctions functions{fake.Functions()};
    const DXGI dxgi{functions};
    const DirectX_8 directX8{functions};
    const DirectX_9 directX9{functions};
    const DirectX_10 directX10{functions};
    const DirectX_11 directX11{functions};
    const DirectX_12 directX12{functions};
    const DXDiag dxDiag{functions};
    Adapters adapters{{dxgi, &ReadAdapterCache, [](auto& listed) { SetupLib::Instance().GetGpuInfo(listed); },
                       directX8, directX9, directX10, directX11, directX12, dxDiag, functions}};
};

TEST(Graphics, AdaptersComeOutLineForLineAndNoDriverIsLoadedUnasked)
{
    const auto machines = test::ReadGraphicsMachines();
    EXPECT_EQ(machines.size(), 13U);
    for (const auto& machine : machines) {
        SCOPED_TRACE(testing::PrintToString(machine.what));
        test::TestSession session;
        session.wanted.Assign(machine.wanted, L"");
        PlantedGraphics planted(machine);
        GPU().Detect(planted.adapters);
        DirectX().Detect(planted.adapters);
        Lines stored = Stored(session, 72000, 72015);
        stored.push_back(Stored(session, 72200, 72212).front());
        EXPECT_EQ(stored, machine.stored);
        EXPECT_EQ(planted.fake.Calls(), machine.calls);
        EXPECT_EQ(planted.fake.References(), 0);
        ExpectNothingPersonal(session);
    }
}

TEST(Graphics, LogTellsWhereAFactIsFromAndNamesTheDriverBeforeItIsCalled)
{
    const auto machines = test::ReadGraphicsMachines();
    const auto& machine = *std::ranges::find(machines, L"a driver that fails inside, on Windows 7",
                                             &test::GraphicsMachine::what);
    test::TestSession session;
    session.wanted.Assign(machine.wanted, L"");
    PlantedGraphics planted(machine);
    const test::LogCapture log(3);
    GPU().Detect(planted.adapters);
    const Lines lines = log.Lines();
    const auto place = [&lines](const wchar_t* line) { return std::ranges::find(lines, line); };
    const auto failure = place(L"ERR Error in D3D11CreateDevice for Old");
    ASSERT_NE(failure, lines.end());
    EXPECT_EQ(*(failure - 1), L"TRACE Calling D3D11CreateDevice for Old");
    EXPECT_EQ(*(failure + 1), L"TRACE Calling D3D10CreateDevice1 for Old");
    for (const wchar_t* line :
         {L"TRACE GPU[0] dedicated memory from DXGI", L"TRACE GPU[0] driver version from DXGI",
          L"TRACE GPU[0] feature level from Direct3D 10"})
        EXPECT_NE(place(line), lines.end()) << line;
}

TEST(Graphics, DisplaysAndMonitorsComeOutLineForLine)
{
    const auto edids = test::ReadEdids();
    for (auto machine : test::DisplayMachines) {
        SCOPED_TRACE(machine.what);
        const test::ScratchKey registry(HKEY_LOCAL_MACHINE);
        for (const auto& [instance, source] : machine.edids) {
            const auto& bytes = std::ranges::find(edids, source, &test::Edid::source)->bytes;
            registry.Write(L"SYSTEM\\CurrentControlSet\\Enum\\" + instance + L"\\Device Parameters", L"EDID",
                           REG_BINARY, bytes.data(), bytes.size());
        }
        test::TestSession session;
        const DisplayConfig config(machine.displays.Functions());
        kel::Graphics().Detect(config);
        Monitor().Detect(config);
        EXPECT_EQ(Stored(session, 72400, 72406), Lines{machine.graphics});
        EXPECT_EQ(Stored(session, 73100, 73113), machine.monitors);
        ExpectNothingPersonal(session);
    }
}

}  // namespace
}  // namespace kel
