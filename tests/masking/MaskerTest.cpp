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
    std::wstring computer(256, L'\0');
    auto size = static_cast<DWORD>(computer.size());
    ASSERT_TRUE(GetComputerNameW(computer.data(), &size));
    computer.resize(size);
    EXPECT_EQ(Masker::OfSystem().Mask(L"on " + computer), L"on <name 1>");
}

}  // namespace
}  // namespace kel
