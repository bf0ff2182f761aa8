#include "values/Version.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"

namespace kel {
namespace {

constexpr std::uint64_t Pack(std::uint64_t a, std::uint64_t b = 0, std::uint64_t c = 0, std::uint64_t d = 0)
{
    return a << 48 | b << 32 | c << 16 | d;
}

TEST(Version, PacksItsFields)
{
    const struct {
        const wchar_t* text;
        std::uint64_t quantity;
        std::size_t errorLines;
    } rows[] = {
        {L"6.1.7601", Pack(6, 1, 7601), 0},
        {L"8.15.10.2702", Pack(8, 15, 10, 2702), 0},
        {L"1,2-3 4", Pack(1, 2, 3, 4), 0},
        {L"1_2", Pack(1, 2), 0},
        {L"..1..2..", Pack(1, 2), 0},
        {L"1.2.3.4.x", Pack(1, 2, 3, 4), 0},
        {L"", 0, 0},
        {nullptr, 0, 0},
        {L"0.0", 0, 0},
        {L"...", 0, 0},
        {L"9.0C", Pack(9) + L'C', 0},
        {L"9.C", Pack(9) + L'C', 0},
        {L"C", L'C', 0},
        {L"1.2.3.4.5Z", Pack(1, 2, 3, 4) + L'Z', 0},
        {L"9.0c", 9 << 16, 1},
        {L"6.7601a.3", 6 << 16, 1},
        {L"x", 0, 1},
        {L"1.2.3.x", Pack(1, 2, 3), 1},
        {L"1.70000", Pack(1) | 70000ULL << 32, 0},
        {L"18446744073709551616", 0, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text != nullptr ? row.text : L"(null)");
        const test::LogCapture log(1);
        EXPECT_EQ(Version(row.text).Quantity(), row.quantity);
        EXPECT_EQ(log.Lines(), std::vector<std::wstring>(row.errorLines, L"ERR Error in Version::Quantity."));
    }
}

TEST(Version, KeepsTheTextItWasGiven)
{
    EXPECT_STREQ(Version().ToString(), L"0.0");
    EXPECT_STREQ(Version(nullptr).ToString(), L"");
    EXPECT_STREQ(Version(std::int64_t{42}).ToString(), L"42");
    EXPECT_EQ(Version(std::int64_t{42}).Quantity(), Pack(42));
    Version version(L"1");
    EXPECT_TRUE(version.Set(std::wstring(L"2.0 beta")));
    EXPECT_STREQ(version.ToString(), L"2.0 beta");
    const std::unique_ptr<Version> clone(version.Clone());
    version = L"3";
    EXPECT_STREQ(clone->ToString(), L"2.0 beta");
    EXPECT_STREQ(version.ToString(), L"3");
}

TEST(Version, ComparesByQuantity)
{
    EXPECT_LT(Version(L"6.1.7601"), Version(L"6.2"));
    EXPECT_EQ(Version(L"6.1"), Version(L"6.1.0.0"));
    EXPECT_LT(Version(L"9.0C"), Version(L"10.0"));
    EXPECT_LT(Version(L"9.0B"), Version(L"9.0C"));
    EXPECT_LT(Version(L"9.0"), Version(L"9.0B"));
    EXPECT_LT(Version(L"9.0c"), Version(L"9.0"));
    EXPECT_FALSE(Version(L"10") < Version(L"9"));
}

}  // namespace
}  // namespace kel
