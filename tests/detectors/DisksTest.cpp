#include <gtest/gtest.h>

#include "detectors/Detectors.h"
#include "support/FakeStorage.h"
#include "support/FakeWmi.h"
#include "support/Machines.h"
#include "support/StorageAnswers.h"
#include "support/TestSession.h"

namespace kel {
namespace {

using namespace test;

struct Disks : testing::Test {
    FakeWmiData wmi;
    const FakeWmi fake{wmi};
    FakeStorage storage;
    TestSession session;

    void PlantWmiDisk(int number, const std::wstring& model)
    {
        wmi.objects[L"SELECT * FROM Win32_DiskDrive"].push_back(
            {{L"Model", {model.c_str()}}, {L"Index", {static_cast<long>(number), CIM_SINT32}}});
    }
};

TEST_F(Disks, AreDescribedWhateverTheirKind)
{
    Lines expected;
    for (const std::wstring& row : ReadRows("real_disks.txt")) {
        std::vector<std::string> fields;
        for (const std::wstring& field : SplitAll(row, L';'))
            fields.push_back(Narrow(field));
        const std::string model = fields[6] == "=" ? fields[3] : fields[6].substr(0, fields[6].find('!'));
        const auto says = [&fields](char what) { return fields[4].find(what) != std::string::npos; };
        FakeDevice& disk = storage.devices[L"\\\\.\\PhysicalDrive" + std::to_wstring(expected.size())];
        disk.answers[DeviceProperty] =
            Descriptor(std::stoi(fields[1]), fields[2].empty() ? nullptr : fields[2].c_str(),
                       fields[3].c_str(), "1", says('m'));
        disk.answers[GeometryRequest] =
            Geometry(std::stoull(fields[5]), says('F') ? F3_1Pt44_512 : FixedMedia);
        disk.answers[HotplugRequest] = HotplugInfo(false, says('d'));
        if (says('f') || says('c'))
            disk.answers[SeekPenalty] = Flag(says('c'));
        std::string named = fields[6] == "=" ? fields[3] : fields[6];
        std::erase(named, '!');
        PlantWmiDisk(static_cast<int>(expected.size()), {named.begin(), named.end()});
        const std::string stored = fields[7][0] == '=' ? model + fields[7].substr(1) : fields[7];
        expected.emplace_back(stored.begin(), stored.end());
    }
    ASSERT_EQ(expected.size(), 50U);
    HardDrive().Detect(storage.Functions());
    const auto listed = std::ssize(expected) - std::ranges::count(expected, L"left out");
    Lines stored(expected.size(), L"left out");
    for (int index = 0; index < listed; ++index)
        stored.at(std::stoul(session.At(index, {72509}))) =
            session.At(index, {72502, 72504, 72505, 72506, 72507});
    EXPECT_EQ(stored, expected);
    EXPECT_EQ(session.At(static_cast<int>(listed), {72509}), L"(none)");
}

TEST_F(Disks, AreTwoHundredAtMost)
{
    for (int number = 0; number < 250; ++number)
        PlantWmiDisk(number, L"Of WMI");
    HardDrive().Detect(storage.Functions());
    EXPECT_EQ(session.Text(72501) + L" " + session.At(199, {72502, 72509}), L"200 Of WMI|199");
}

}  // namespace
}  // namespace kel
