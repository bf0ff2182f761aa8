#include "masking/Masker.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "support/Machines.h"

namespace kel {
namespace {

TEST(Masker, ReplacesWhatIdentifiesAndNothingElse)
{
    Masker masker({L"Anna", L"FILESERVER", L"", L"a"});
    masker.Keep(L"4.5.1.0");
    const test::Lines rows = test::ReadRows("masked.txt");
    EXPECT_GT(rows.size(), 30U);
    for (const std::wstring& row : rows) {
        const std::size_t arrow = row.find(L" => ");
        EXPECT_EQ(masker.Mask(row.substr(0, arrow)), row.substr(arrow + 4)) << row;
    }
}

TEST(Masker, KnowsTheNamesOfThisMachineAndUser)
{
    SetEnvironmentVariableW(L"USERNAME", L"Loginword");
    SetEnvironmentVariableW(L"USERDOMAIN", L"Domainword");
    SetEnvironmentVariableW(L"USERPROFILE", L"D:\\People\\Profileword");
    test::Lines names = {L"Loginword", L"Domainword", L"Profileword"};
    wchar_t name[300] = {};
    auto size = static_cast<DWORD>(std::size(name));
    ASSERT_TRUE(GetUserNameW(name, &size));
    names.emplace_back(name);
    for (const COMPUTER_NAME_FORMAT format : {ComputerNameNetBIOS, ComputerNameDnsHostname}) {
        size = static_cast<DWORD>(std::size(name));
        ASSERT_TRUE(GetComputerNameExW(format, name, &size));
        names.emplace_back(name);
    }
    for (const std::wstring& one : names)
        EXPECT_EQ(Masker::OfSystem().Mask(L"on " + one + L"."), L"on <name 1>.") << one;
}

}  // namespace
}  // namespace kel
