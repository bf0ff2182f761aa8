#include <gmock/gmock.h>

#include "support/PlantedMachine.h"
#include "values/Text.h"

namespace kel {
namespace {

using test::Lines;

/// The machine's own processors, locale and identifier, which no test plants.
constexpr unsigned OfThisMachine[] = {71207, 71254, 71257, 71388};

/// What people choose and what tells one machine from its equals: planted in device ids, names of networks,
/// endpoints, folders, programs and shares, in WMI's objects, in EDIDs (as a number and as a text), and as
/// addresses.
constexpr const wchar_t* Personal[] = {L"ANNA",       L"SERIAL-4711",  L"0211223344", L"0211-22", L"02-11-22",
                                       L"02:11:22",   L"G3D7F68O0LLB", L"810306626",  L"DIARY",   L"44.55",
                                       L"FILESERVER", L"TSCLIENT",     L"C:\\",       L"\\\\"};

/// Of what was stored, the lines whose ids are in one of the ranges of a machine's description; all without
/// any.
Lines Chosen(const Lines& stored, const std::wstring& ranges)
{
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

struct Machines : testing::TestWithParam<const char*> {};

TEST_P(Machines, ComeOutLineForLineAndTwiceTheSame)
{
    test::FakeWmiData wmi;
    const test::FakeWmi fakeWmi(wmi);
    for (const test::Machine& machine : test::ReadMachines(GetParam())) {
        SCOPED_TRACE(testing::PrintToString(machine.First(L"machine")));
        test::PlantedMachine planted(machine, wmi);
        const test::Detected detected = planted.Detect();
        {
            out << L"machine " << machine.First(L"machine") << L"\n";
            for (auto& l : Chosen(detected.stored, machine.First(L"ids")))
                out << l << L"\n";
        }
        EXPECT_EQ(Chosen(detected.stored, machine.First(L"ids")), machine.Stored());
        EXPECT_EQ(detected.calls, machine.First(L"calls"));
        EXPECT_EQ(detected.held, 0U);
        EXPECT_FALSE(detected.isSoundMisused);
        for (const wchar_t* text : Personal)
            EXPECT_EQ(ToUpper(detected.report).find(text), std::wstring::npos) << text;
        EXPECT_EQ(planted.Detect().report, detected.report);
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Machines,
                         testing::Values("gaming_laptop.txt", "old_desktop.txt", "virtual_machine.txt",
                                         "tablet.txt", "bare_server.txt", "graphics.txt", "displays.txt",
                                         "networks.txt"),
                         [](const auto& file) {
                             const std::string name = file.param;
                             return name.substr(0, name.find('.'));
                         });

}  // namespace
}  // namespace kel
