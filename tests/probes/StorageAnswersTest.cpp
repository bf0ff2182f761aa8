#include <gtest/gtest.h>

#include "support/ShowAnswers.h"
#include "support/StorageAnswers.h"

namespace kel {
namespace {

using namespace test;

std::string Spoilt(std::string answer, std::size_t place, std::uint32_t number)
{
    return answer.replace(place, 4, Little(number, 4));
}

TEST(StorageAnswers, AreReadAtEveryLengthAndNeverPastTheirEnd)
{
    const std::string disk = Descriptor(11, "ATA     ", "ST1000DM010-2EP102", "CC43");
    const std::string profiles = Profiles({0x10, 0x09, 0x43});
    const struct {
        AnswerKind kind;
        std::string answer;
        std::wstring expected;
        std::size_t needed;  ///< a shorter answer is no answer; 0 for one whose parts tell something
    } rows[] = {
        {OfFlag, Flag(true), L"yes", 9},
        {OfFlag, Flag(false), L"no", 9},
        {OfGeometry, Geometry(4000787030016), L"4000787030016", 32},
        {OfGeometry, Geometry(1474560, F3_1Pt44_512), L"1474560 floppy", 32},
        {OfGeometry, Geometry(1ULL << 63), L"-", 0},
        {OfNumber, Number(7, 3), L"7|3", 8},
        {OfNumber, Number(7, 0xFFFFFFFF), L"-", 0},
        {OfHotplug, HotplugInfo(true, false), L"1|0", 7},
        {OfHotplug, HotplugInfo(false, true), L"0|1", 7},
        {OfExtents, Extents({2, 70000}), L"-2 70000 ", 0},
        {OfExtents, Spoilt(Extents({5}), 0, 0xFFFFFFFF), L"-5 ", 12},  // claims more
        {OfProfiles, Profiles({0x2B, 0x10, 0x09, 8, 2}), L"CdD2/CdD2bB", 0},
        {OfProfiles, profiles.substr(0, 20), L"Cd/Cd", 0},  // of a part what is there
        {OfProfiles, profiles.substr(0, 12), L"-", 0},
        {OfProfiles, Spoilt(profiles, 0, 0), L"-", 0},           // whose own length is 0
        {OfProfiles, Spoilt(profiles, 8, 0x0C030100), L"-", 0},  // another feature
        {OfMediaTypes, MediaTypes(FILE_DEVICE_DVD, {{CD_R, MEDIA_WRITE_ONCE}}), L"Cd/Cd", 0},
        {OfMediaTypes, MediaTypes(FILE_DEVICE_CD_ROM, {{DVD_RW, MEDIA_READ_WRITE}}), L"dD/dD", 40},
        {OfMediaTypes, MediaTypes(FILE_DEVICE_CD_ROM, {{CD_RW, MEDIA_READ_ONLY}}), L"-", 0},
        {OfMediaTypes, MediaTypes(FILE_DEVICE_DISK, {{DVD_R, MEDIA_WRITE_ONCE}}), L"-", 0},
        {OfDevice, disk, L"ATA|ST1000DM010-2EP102|CC43|0|11", 0},
        {OfDevice, Descriptor(7, nullptr, nullptr, nullptr, true), L"|||1|7", 32},
        {OfDevice, Descriptor(7, "   ", "", " \t"), L"|||0|7", 32},
        {OfDevice, Spoilt(Spoilt(disk, 12, 9999), 16, 0xFFFFFFFF), L"||CC43|0|11", 0},  // past the end
        {OfDevice, Spoilt(disk, 12, 4), L"|ST1000DM010-2EP102|CC43|0|11", 0},           // inside the numbers
        {OfDevice, Spoilt(disk, 4, 40 + 9 + 8), L"ATA|ST1000DM||0|11", 0},              // cut by its size
        {OfDevice, Spoilt(disk, 4, 8), L"-", 0},
        {OfDevice, Descriptor(17, "A\x80", "B\nC", "\xFF"), L"A|B||0|17", 0},
    };
    for (const auto& row : rows) {
        for (std::size_t length = 0; length <= row.answer.size(); ++length) {
            const std::wstring shown = ShowBounded(row.answer.substr(0, length))[row.kind];
            const bool isWhole = length == row.answer.size() || (row.needed != 0 && length >= row.needed);
            const bool isPart =
                row.needed == 0 && length > 0 && !shown.empty() && shown.size() <= row.expected.size();
            EXPECT_TRUE(isWhole ? shown == row.expected : shown == L"-" || isPart)
                << row.expected << " of " << length << ": " << shown;
        }
    }
}

}  // namespace
}  // namespace kel
