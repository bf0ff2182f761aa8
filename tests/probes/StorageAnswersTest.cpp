#include <gtest/gtest.h>

#include "support/ShowAnswers.h"
#include "support/StorageAnswers.h"

namespace kel {
namespace {

using namespace test;

/// An answer, what is read from it, and how long it has to be for that; shorter ones give what `cut` says,
/// which ends what they may show.
struct Row {
    const char* what;
    ShowAnswer show;
    std::string answer;
    std::wstring expected;
    std::size_t needed;
    const wchar_t* cut = L"-";
};

std::string Spoilt(std::string answer, std::size_t place, std::uint32_t number)
{
    return answer.replace(place, 4, Little(number, 4));
}

TEST(StorageAnswers, AreReadAtEveryLengthAndNeverPastTheirEnd)
{
    const std::string disk = Descriptor(11, "ATA     ", "ST1000DM010-2EP102", "CC43");
    const Row rows[] = {
        {"flag", ShowFlag, Flag(true), L"yes", 9},
        {"no flag", ShowFlag, Flag(false), L"no", 9},
        {"4 TB", ShowGeometry, Geometry(4000787030016), L"4000787030016", 32},
        {"floppy", ShowGeometry, Geometry(1474560, F3_1Pt44_512), L"1474560 floppy", 32},
        {"negative", ShowGeometry, Geometry(1ULL << 63), L"-", 0},
        {"number", ShowNumber, Number(7, 3), L"7|3", 8},
        {"none", ShowNumber, Number(7, 0xFFFFFFFF), L"-", 0},
        {"hotplug", ShowHotplug, HotplugInfo(true, false), L"1|0", 7},
        {"unplugged", ShowHotplug, HotplugInfo(false, true), L"0|1", 7},
        {"two disks", ShowExtents, Extents({2, 70000}), L"2 70000 ", 36, L""},
        {"more claimed", ShowExtents, Spoilt(Extents({5}), 0, 0xFFFFFFFF), L"5 ", 12, L""},
        {"burner", ShowProfiles, Profiles({0x2B, 0x10, 0x09, 8, 2}), L"CdD2/CdD2bB", 30, L"/"},
        {"length of the answer", ShowProfiles, Spoilt(Profiles({0x10}), 0, 0), L"/", 0, L"/"},
        {"no profile", ShowProfiles, Profiles({}), L"/", 0, L"/"},
        {"another feature", ShowProfiles, Spoilt(Profiles({0x10}), 8, 0x04030100), L"/", 0, L"/"},
        {"DVD", ShowMediaTypes,
         MediaTypes(FILE_DEVICE_DVD, {{DVD_ROM, MEDIA_READ_ONLY}, {CD_R, MEDIA_WRITE_ONCE}}), L"Cd/Cd", 72,
         L"/"},
        {"rewritable", ShowMediaTypes,
         MediaTypes(FILE_DEVICE_CD_ROM, {{DVD_RW, MEDIA_READ_WRITE}, {CD_RW, MEDIA_READ_ONLY}}), L"dD/dD", 0,
         L"/"},
        {"a disk", ShowMediaTypes, MediaTypes(FILE_DEVICE_DISK, {{DVD_R, MEDIA_WRITE_ONCE}}), L"/", 0, L"/"},
        {"SATA", ShowDescriptor, disk, L"ATA|ST1000DM010-2EP102|CC43|0|11", 32 + 8 + 9 + 19 + 4},
        {"no texts", ShowDescriptor, Descriptor(7, nullptr, nullptr, nullptr, true), L"|||1|7", 32},
        {"blank", ShowDescriptor, Descriptor(7, "   ", "", " \t"), L"|||0|7", 32},
        {"past the end", ShowDescriptor, Spoilt(Spoilt(disk, 12, 9999), 16, 0xFFFFFFFF), L"||CC43|0|11", 0},
        {"inside the numbers", ShowDescriptor, Spoilt(disk, 12, 4), L"|ST1000DM010-2EP102|CC43|0|11", 0},
        {"cut by its size", ShowDescriptor, Spoilt(disk, 4, 40 + 9 + 8), L"ATA|ST1000DM||0|11", 57},
        {"without a size", ShowDescriptor, Spoilt(disk, 4, 8), L"-", 0},
        {"not ASCII", ShowDescriptor, Descriptor(17, "A\x80", "B\nC", "\xFF"), L"A|B||0|17", 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(ShowBounded(row.show, row.answer), row.expected) << row.what;
        for (std::size_t length = 0; length < row.answer.size(); ++length) {
            const std::wstring shown = ShowBounded(row.show, row.answer.substr(0, length));
            if (row.needed != 0 && length >= row.needed) {
                EXPECT_EQ(shown, row.expected) << row.what << " of " << length;
                continue;
            }
            // Of a list or of texts what is left is there; all else is there as a whole or not at all.
            const bool isPart = (*row.cut != L'-' || length >= 32) && shown.size() <= row.expected.size() &&
                                shown.find(L"behind") == std::wstring::npos;
            EXPECT_TRUE(shown == row.cut || isPart) << row.what << " of " << length;
        }
    }
}

TEST(StorageAnswers, TellOfAPartOfTheProfilesOnlyWhatIsThere)
{
    const std::string answer = Profiles({0x10, 0x09, 0x43});
    const wchar_t* expected[] = {L"/", L"d/d", L"Cd/Cd", L"CdbB/CdD2bB"};
    for (std::size_t count = 0; count < std::size(expected); ++count)
        EXPECT_EQ(ShowBounded(ShowProfiles, answer.substr(0, 12 + 4 * count)), expected[count]) << count;
}

}  // namespace
}  // namespace kel
