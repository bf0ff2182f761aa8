#include <comdef.h>
#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "values/Exists.h"
#include "values/Junk.h"
#include "values/Name.h"
#include "values/Resolution.h"
#include "values/Version.h"

namespace kel {
namespace {

TEST(Exists, SharesOneTextAmongAllObjects)
{
    const Exists no;
    Exists yes(true);
    const wchar_t* first = no.ToString();
    EXPECT_STREQ(first, L"No");
    EXPECT_STREQ(yes.ToString(), L"Yes");
    EXPECT_STREQ(first, L"Yes");
    const std::unique_ptr<Exists> clone(yes.Clone());
    EXPECT_FALSE((yes = false).Get());
    EXPECT_TRUE(clone->Get());
}

TEST(Name, KeepsTextsUnchangedUpToTheFirstZero)
{
    const wchar_t* nothing = nullptr;
    const std::pair<Name, const wchar_t*> rows[] = {
        {Name(std::wstring(L"ab\0cd", 5)), L"ab"}, {Name(L" a<b "), L" a<b "}, {Name(nothing), L""},
        {Name(SharedText(L"shared")), L"shared"},  {Name(SharedText()), L""},  {Name(), L""},
    };
    for (const auto& [name, text] : rows) {
        EXPECT_STREQ(name.ToString(), text);
        EXPECT_EQ(name.HasValue(), *text != L'\0');
    }
}

TEST(Name, SharesItsTextWithClonesUntilOneIsAssigned)
{
    Name name(L"text");
    const std::unique_ptr<Name> clone(name.Clone());
    EXPECT_EQ(clone->ToString(), name.ToString());
    name = L"other";
    EXPECT_STREQ(clone->ToString(), L"text");
    EXPECT_STREQ(name.ToString(), L"other");
}

TEST(Name, ComparesExactlyAndRefusesANameWithoutBuffer)
{
    EXPECT_TRUE(Name(L"abc") == Name(L"abc"));
    EXPECT_FALSE(Name(L"abc") == Name(L"ABC"));
    EXPECT_FALSE(Name(SharedText()) == Name(L"abc"));
    EXPECT_THROW(static_cast<void>(Name(L"abc") == Name(SharedText())), _com_error);
}

TEST(Resolution, ReadsTwoEdgesAndNothingElse)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"1920x1080", L"1920x1080"},
        {L" 1920 x\t1080", L"1920x1080"},
        {L"1920X1080 @ 60", L"1920x1080"},
        {L"1920*1080x3", L"1920x1080"},
        {L"65535x1", L"65535x1"},
        {L"007x08", L"7x8"},
        {L"65536x1", L""},
        {L"1x4294967297", L""},
        {L"1920x", L""},
        {L"x1080", L""},
        {L"0x1080", L""},
        {L"1920x0", L""},
        {L"1920-1080", L""},
        {L"-1x1", L""},
        {L"1920", L""},
        {L"", L""},
        {nullptr, L""},
    };
    for (const auto& [text, shown] : rows) {
        Resolution resolution(1, 1);
        EXPECT_EQ(resolution.Initialize(text), *shown != L'\0') << shown;
        EXPECT_STREQ(resolution.ToString(), shown);
        EXPECT_EQ(resolution.HasValue(), *shown != L'\0');
    }
    EXPECT_STREQ(Resolution(65536, 1).ToString(), L"");
    const std::unique_ptr<Resolution> clone(Resolution(L"7x8").Clone());
    EXPECT_TRUE(*clone == Resolution(7, 8));
    EXPECT_FALSE(*clone == Resolution(8, 7));
}

TEST(Resolution, CoversWhatFitsUprightOrLying)
{
    const std::tuple<const wchar_t*, const wchar_t*, bool> rows[] = {
        {L"1280x720", L"1280x720", true},  {L"1080x1920", L"1280x720", true},
        {L"1280x719", L"1280x720", false}, {L"1279x9999", L"1280x720", true},
        {L"700x9999", L"1280x720", false}, {L"", L"1280x720", false},
        {L"1280x720", L"", false},
    };
    for (const auto& [found, required, covers] : rows)
        EXPECT_EQ(Resolution(found).Covers(Resolution(required)), covers) << found;
}

TEST(Junk, IsAbsent)
{
    for (const wchar_t* filler : {L"To Be Filled By O.E.M.", L" Default string ", L"GENERIC PNP MONITOR",
                                  L"(Standard disk drives)", L"Not Specified\r\nx", L"\x01real"})
        EXPECT_EQ(TidyText(filler), L"") << filler;
    EXPECT_EQ(TidyText(L" Default strings\x7Fx"), L"Default strings");
}

constexpr std::uint64_t Pack(std::uint64_t a, std::uint64_t b = 0, std::uint64_t c = 0, std::uint64_t d = 0)
{
    return a << 48 | b << 32 | c << 16 | d;
}

TEST(Version, PacksItsFields)
{
    const struct {
        const wchar_t* text;
        std::uint64_t quantity;
        std::size_t errorLines = 0;
    } rows[] = {
        {L"8.15.10.2702", Pack(8, 15, 10, 2702)}, {L"1,2-3 4", Pack(1, 2, 3, 4)}, {L"1_2", Pack(1, 2)},
        {L"1.2.3.4.5Z", Pack(1, 2, 3, 4) + L'Z'}, {L"1.2.3.x", Pack(1, 2, 3), 1}, {nullptr, 0},
        {L"1.70000", Pack(1) | 70000ULL << 32},   {L"6.7601a.3", 6 << 16, 1},     {L"C", L'C'},
        {L"1.2.3.4.x", Pack(1, 2, 3, 4)},         {L"..1..2..", Pack(1, 2)},      {L"x", 0, 1},
        {L"6.1.7601", Pack(6, 1, 7601)},          {L"9.0C", Pack(9) + L'C'},      {L"...", 0},
        {L"18446744073709551616", 0, 1},          {L"9.0c", 9 << 16, 1},
    };
    for (const auto& row : rows) {
        const test::LogCapture log(1);
        EXPECT_EQ(Version(row.text).Quantity(), row.quantity) << row.text;
        EXPECT_EQ(log.Lines(), std::vector<std::wstring>(row.errorLines, L"ERR Error in Version::Quantity."));
    }
}

TEST(Version, KeepsTheTextItWasGiven)
{
    EXPECT_STREQ(Version().ToString(), L"0.0");
    EXPECT_STREQ(Version(nullptr).ToString(), L"");
    EXPECT_STREQ(Version(std::int64_t{42}).ToString(), L"42");
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
    EXPECT_LT(Version(L"9.0C"), Version(L"10.0"));
    EXPECT_LT(Version(L"9.0B"), Version(L"9.0C"));
    EXPECT_EQ(Version(L"6.1"), Version(L"6.1.0.0"));
    EXPECT_FALSE(Version(L"10") < Version(L"9"));
}

}  // namespace
}  // namespace kel
