#include <gtest/gtest.h>

#include "support/Machines.h"
#include "support/ShowAnswers.h"
#include "support/StorageAnswers.h"
#include "values/Text.h"

namespace kel {
namespace {

using namespace test;

TEST(OpticalAbilities, AreReadFromRealNames)
{
    int names = 0;
    for (const std::wstring& row : ReadRows("real_optical_drives.txt")) {
        const std::size_t colon = row.find(L':');
        for (const std::wstring& name : Split(row.substr(colon + 1), L';')) {
            EXPECT_EQ(ShowAbilities(GetAbilitiesOfName(Trim(name))), row.substr(0, colon)) << name;
            ++names;
        }
    }
    EXPECT_EQ(names, 64);
    const std::pair<int, const wchar_t*> profiles[] = {
        {0x00, L""},   {0x08, L""},   {0x09, L"C"},   {0x0A, L"C"},   {0x10, L"d"},  {0x11, L"dD"},
        {0x12, L"dD"}, {0x14, L"dD"}, {0x15, L"dD2"}, {0x17, L"dD2"}, {0x18, L"dD"}, {0x19, L""},
        {0x1A, L"dD"}, {0x1B, L"dD"}, {0x2A, L"dD2"}, {0x2B, L"dD2"}, {0x40, L"b"},  {0x41, L"bB"},
        {0x43, L"bB"}, {0x50, L""},   {0xFFFF, L""},
    };
    for (const auto& [profile, abilities] : profiles) {
        const std::string answer = Profiles({profile});
        EXPECT_EQ(ShowAbilities(ReadProfiles(std::as_bytes(std::span(answer))).has), abilities) << profile;
    }
}

TEST(OpticalAbilities, AreReadFromTheCountedMediaOnly)
{
    std::string answer = MediaTypes(FILE_DEVICE_CD_ROM, {{CD_R, MEDIA_WRITE_ONCE}, {DVD_ROM, 0}});
    EXPECT_EQ(ShowAbilities(ReadMediaTypes(std::as_bytes(std::span(answer))).has), L"Cd");
    answer.replace(4, 4, Little(1, 4));
    EXPECT_EQ(ShowAbilities(ReadMediaTypes(std::as_bytes(std::span(answer))).has), L"C");
    answer.replace(4, 4, Little(9, 4)).pop_back();
    EXPECT_EQ(ShowAbilities(ReadMediaTypes(std::as_bytes(std::span(answer))).has), L"C");
}

}  // namespace
}  // namespace kel
