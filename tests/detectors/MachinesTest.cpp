#include <gmock/gmock.h>

#include <fstream>
#include <set>

#include "detectors/Components.h"
#include "service/Utf8.h"
#include "support/PlantedMachine.h"
#include "support/TestFiles.h"
#include "values/Text.h"

namespace kel {
namespace {

using test::Lines;

/// The machine's own processors, locale and identifier, which no test plants.
constexpr unsigned OfThisMachine[] = {71207, 71254, 71257, 71388};

/// Names that people choose, and data that distinguish a machine from others of its model: planted in device
/// ids, names of networks, endpoints, folders, programs and shares, in WMI's objects, in EDIDs (as a number
/// and as a text), and as addresses.
constexpr const wchar_t* Personal[] = {L"ANNA",       L"SERIAL-4711",  L"0211223344", L"0211-22", L"02-11-22",
                                       L"02:11:22",   L"G3D7F68O0LLB", L"810306626",  L"DIARY",   L"44.55",
                                       L"FILESERVER", L"TSCLIENT",     L"C:\\",       L"\\\\",    L"192.0.2"};

/// The stored lines whose ids are in one of the ranges that a machine's last description names; all if it
/// names none.
Lines Chosen(const Lines& stored, const Lines& described)
{
    const std::wstring ranges = described.empty() ? L"" : described.back();
    Lines chosen;
    for (const std::wstring& line : stored) {
        const unsigned long id = std::stoul(line);
        bool isChosen = ranges.empty() && std::ranges::count(OfThisMachine, id) == 0;
        for (const std::wstring& range : test::Split(ranges, L' '))
            isChosen |= std::stoul(range) <= id && id <= std::stoul(range.substr(6));
        if (isChosen)
            chosen.push_back(line);
    }
    return chosen;
}

/// The lines as one text, so that a failure shows those that differ.
std::string Join(const Lines& lines)
{
    std::string joined;
    for (const std::wstring& line : lines)
        joined += ToUtf8(Trim(line)) + "\n";
    return joined;
}

/// Why stored values are empty: each reason once.
Lines ReasonsOf(const Lines& stored, const Lines& reasons)
{
    Lines own;
    for (const std::wstring& reason : reasons) {
        const auto isOf = [&reason](const std::wstring& line) {
            return line.starts_with(reason.substr(0, reason.find(L'=') + 1));
        };
        if (std::ranges::any_of(stored, isOf) && std::ranges::count(own, reason) == 0)
            own.push_back(reason);
    }
    return own;
}

/// The errors and warnings of the log, without those about missing values of a driver's key, except values
/// that only some drivers have.
Lines Complaints(Lines log)
{
    std::erase_if(log, [](const std::wstring& line) {
        const bool isComplaint = line.starts_with(L"ERR ") || line.starts_with(L"WARN ");
        return !isComplaint || (line.starts_with(L"WARN Can't handle Registry value") &&
                                line.find(L"MemorySize") == line.npos && line.find(L"Radeon") == line.npos);
    });
    return log;
}

/// The log without the lines about what no test plants, and without the values at the end of each detector,
/// which are those that are stored.
Lines WithoutThisMachine(Lines log)
{
    std::erase_if(log, [](const std::wstring& line) {
        return line.starts_with(L"TRACE Value ") || std::ranges::any_of(OfThisMachine, [&line](unsigned id) {
                   return line.ends_with(L" to " + std::to_wstring(id));
               });
    });
    return log;
}

/// Disks and volumes are opened without access rights, and only the volume of Windows and other fixed ones.
void ExpectOnlyHarmless(const Lines& opened, const Lines& volumes)
{
    for (const std::wstring& path : opened) {
        const bool isDisk = path.find(L"PhysicalDrive") != path.npos;
        EXPECT_FALSE(isDisk && path.ends_with(L"reading")) << path;
        const bool isFixed = std::ranges::any_of(volumes, [&path](const std::wstring& volume) {
            return path == L"\\\\.\\" + volume.substr(0, 1) + L":" && volume.substr(1, 3) == L"|3|";
        });
        EXPECT_TRUE(path.size() > 7 || path == L"\\\\.\\C:" || isFixed) << path;
    }
}

/// Every id that a detector stores.
std::set<unsigned> ListIds()
{
    std::set<unsigned> ids;
    for (const auto& [detector, facts] : Components::ListFacts()) {
        for (const StoredFact& fact : facts)
            ids.insert(fact.id);
    }
    return ids;
}

struct Machines : testing::TestWithParam<const char*> {};

TEST_P(Machines, StoreTheExpectedValuesOnEveryRun)
{
    test::FakeWmiData wmi;
    const test::FakeWmi fakeWmi(wmi);
    const std::set<unsigned> listed = ListIds();
    for (const test::Machine& machine : test::ReadMachines(GetParam())) {
        SCOPED_TRACE(test::Narrow(machine.First(L"machine")));
        test::PlantedMachine planted(machine, wmi);
        const test::Detected detected = planted.Detect();
        const Lines stored = Chosen(detected.stored, machine[L"ids"]);
        if (machine[L"+"].empty())
            EXPECT_EQ(Join(stored), Join(machine.Stored(L"=")));
        else
            EXPECT_EQ(Join(test::FoundIn(stored)), Join(machine.Stored(L"+")));
        for (const std::wstring& line : detected.stored)
            EXPECT_TRUE(listed.contains(std::stoul(line))) << line << " is not among the detectors' facts";
        EXPECT_THAT(detected.reasons, testing::IsSupersetOf(machine.Stored(L"why")));
        EXPECT_EQ(detected.calls, machine.First(L"calls"));
        EXPECT_EQ(detected.held, 0U);
        EXPECT_FALSE(detected.isMisused);
        ExpectOnlyHarmless(detected.opened, machine[L"volume"]);
        for (const wchar_t* text : Personal)
            EXPECT_EQ(ToUpper(detected.report).find(text), std::wstring::npos) << text;
        EXPECT_THAT(detected.log, testing::IsSupersetOf(machine[L"trace"]));
        if (!machine[L"opened"].empty()) {
            EXPECT_EQ(detected.letters, machine.First(L"opened"));
        }
        if (!machine[L"says"].empty()) {
            EXPECT_EQ(Join(WithoutThisMachine(detected.log)), Join(machine[L"says"]));
            EXPECT_EQ(Join(ReasonsOf(stored, detected.reasons)), Join(machine.Stored(L"why")));
        } else if (!machine[L"detectors"].empty() &&
                   machine.First(L"log") != L"*") {  // of all detectors, many miss what is not described
            EXPECT_EQ(Join(Complaints(detected.log)), Join(machine[L"log"]));
        }
        EXPECT_EQ(planted.Detect().report, detected.report);
    }
}

/// The ids that are detected only when they are wanted, except the one that takes a download.
std::set<unsigned> ListGated()
{
    std::set<unsigned> gated;
    std::ifstream file(test::TestFile(KEL_CATALOGUE));
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('7') && line.find("\tgated\t") != std::string::npos &&
            !line.starts_with("71069"))
            gated.insert(static_cast<unsigned>(std::stoul(line)));
    }
    return gated;
}

/// The facts of a machine that do not depend on what is wanted.
std::string StoreUngated(const test::Machine& machine, test::FakeWmiData& wmi,
                         const std::set<unsigned>& gated)
{
    Lines stored = Chosen(test::PlantedMachine(machine, wmi).Detect().stored, {});
    std::erase_if(stored, [&gated](const std::wstring& line) { return gated.contains(std::stoul(line)); });
    return Join(stored);
}

TEST_P(Machines, StoreTheSameInOppositeOrderAndForAnyWantedIds)
{
    test::FakeWmiData wmi;
    const test::FakeWmi fakeWmi(wmi);
    const std::set<unsigned> gated = ListGated();
    std::wstring all;
    for (const unsigned id : gated)
        all += std::to_wstring(id) + L",";
    for (const test::Machine& machine : test::ReadMachines(GetParam())) {
        SCOPED_TRACE(test::Narrow(machine.First(L"machine")));
        test::Machine reversed = machine, poor = machine, rich = machine;
        reversed.Set(L"reversed", L"yes");
        poor.Set(L"wanted", L"");
        rich.Set(L"wanted", all);
        const Lines stored = Chosen(test::PlantedMachine(machine, wmi).Detect().stored, {});
        EXPECT_EQ(Join(Chosen(test::PlantedMachine(reversed, wmi).Detect().stored, {})), Join(stored));
        EXPECT_EQ(StoreUngated(poor, wmi, gated), StoreUngated(machine, wmi, gated)) << "nothing wanted";
        EXPECT_EQ(StoreUngated(rich, wmi, gated), StoreUngated(machine, wmi, gated)) << "all wanted";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Of, Machines,
    testing::Values("gaming_laptop.txt", "old_desktop.txt", "virtual_machine.txt", "tablet.txt",
                    "bare_server.txt", "graphics.txt", "displays.txt", "networks.txt", "volumes.txt",
                    "disks.txt", "real_disks.txt", "controllers.txt", "disk_faults.txt", "optical.txt",
                    "network_faults.txt", "sound.txt", "entries.txt", "choices.txt", "processor.txt",
                    "firmware.txt", "faulty_software.txt", "browsers.txt", "systems.txt", "windows.txt",
                    "processor_features.txt", "chassis.txt", "runtimes.txt", "default_browsers.txt",
                    "reader_and_office.txt", "places.txt", "real_graphics.txt", "plugged_disks.txt",
                    "real_devices.txt", "real_displays.txt", "device_faults.txt", "recorded.txt"),
    [](const auto& file) {
        const std::string name = file.param;
        return name.substr(0, name.find('.'));
    });

}  // namespace
}  // namespace kel
