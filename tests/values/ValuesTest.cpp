#include <comdef.h>
#include <gtest/gtest.h>

#include <limits>
#include <span>

#include "support/LocaleWatch.h"
#include "support/LogCapture.h"
#include "support/Machines.h"
#include "values/Bandwidth.h"
#include "values/Count.h"
#include "values/DeviceID.h"
#include "values/Junk.h"
#include "values/Name.h"
#include "values/Quantity.h"
#include "values/Resolution.h"
#include "values/Size.h"
#include "values/Speed.h"
#include "values/Version.h"

namespace kel {
namespace {

using namespace std::string_literals;

constexpr std::uint64_t Largest = std::numeric_limits<std::uint64_t>::max();
constexpr double Huge = std::numeric_limits<double>::max();

/// A text, the amount in it, and the printed form.
using Row = std::tuple<const wchar_t*, std::uint64_t, const wchar_t*>;

/// Reads each text over an older amount, and prints it.
template <typename Quantity>
void CheckRows(Quantity quantity, std::uint64_t (Quantity::*amount)() const, std::span<const Row> rows)
{
    for (const auto& [text, parsed, printed] : rows) {
        EXPECT_TRUE(quantity.Initialize(text)) << text;
        EXPECT_EQ((quantity.*amount)(), parsed) << text;
        EXPECT_STREQ(quantity.ToString(), printed) << text;
    }
}

TEST(Quantities, ReadAndPrintAmountsInTheirUnits)
{
    const Row sizes[] = {
        {L"", 0, L"0.0 B"},
        {L"1048575", 1048575, L"1024.0 KB"},
        {L"-5", 0, L"0.0 B"},
        {L"  2 GB\t", 2147483648, L"2.0 GB"},
        {L"GB", 0, L"0.0 B"},
        {L"2 GB of 3 MB", 2097152, L"2.0 MB"},
        {L"1e3", 1, L"1.0 B"},
        {L"3 MB of KB", 3072, L"3.0 KB"},
        {L"1.9", 1, L"1.0 B"},
        {L"1023", 1023, L"1023.0 B"},
        {L"1.5KB", 1536, L"1.5 KB"},
        {L"9223372036854775808", 1ULL << 63, L"8388608.0 TB"},
        {L"4 kb", 4096, L"4.0 KB"},
        {L"20000000 TB", Largest, L"16777216.0 TB"},
        {L"2 TB", 2ULL << 40, L"2.0 TB"},
        {L"3mb", 3145728, L"3.0 MB"},
        {L"1024", 1024, L"1.0 KB"},
        {L"1280", 1280, L"1.2 KB"},  // half way goes to the even digit
        {L"1331", 1331, L"1.3 KB"},
        {L"1792", 1792, L"1.8 KB"},
    };
    const Row speeds[] = {
        {L"fast", 0, L"0.0 Hz"},      {L"2 GHz 3 MHz", 2000000, L"2.0 MHz"},
        {L"-1 GHz", 0, L"0.0 Hz"},    {L"5000 GHz", 5000000000000, L"5000.0 GHz"},
        {L"999", 999, L"999.0 Hz"},   {L"1e400 GHz", Largest, L"18446744073.7 GHz"},
        {L"1 kHz", 1000, L"1.0 KHz"},
    };
    const Row rates[] = {
        {L"", 0, L"0.0 bps"},
        {L"16000000 bps", 16000000, L"15.3 Mbps"},
        {L"2 Kbps", 2048, L"2.0 Kbps"},
        {L"4096 Gbps", 4398046511104, L"4096.0 Gbps"},
        {L"3 Gbps", 3221225472, L"3.0 Gbps"},
        {L"10 mbPS", 10485760, L"10.0 Mbps"},
    };
    CheckRows(Size(77), &Size::Bytes, sizes);
    CheckRows(Speed(), &Speed::Hertz, speeds);
    CheckRows(Bandwidth(L"7"), &Bandwidth::BitsPerSecond, rates);

    EXPECT_STREQ(Count(std::numeric_limits<std::int64_t>::min()).ToString(), L"-9223372036854775808");
    const test::LogCapture log;
    EXPECT_FALSE(Speed().Initialize(nullptr));
    EXPECT_FALSE(Bandwidth(L"1").Initialize(nullptr));
    EXPECT_TRUE(log.Lines().empty());
    EXPECT_FALSE(Size().Initialize(nullptr));  // the only one that warns
    EXPECT_EQ(log.Lines(), std::vector<std::wstring>{L"WARN NULL parameter."});
}

TEST(Quantities, ReadNumbersAsAStreamDoes)
{
    const std::wstring zeros(400, L'0');
    const std::pair<std::wstring, double> numbers[] = {{L"\t\u00a0\u3000+7.", 7},
                                                       {L".5e1x", 5},
                                                       {L"1E+02", 100},
                                                       {L"-00.25", -0.25},
                                                       {L"1e2.5", 100},
                                                       {L"1.2.3", 1.2},
                                                       {L"1" + zeros + L"e-399", 10},
                                                       {L"0." + zeros + L"1e450", 1e49},
                                                       {L"1" + zeros + L"e-9", Huge},
                                                       {L"0.01e99999999999999999999", Huge},
                                                       {L"0.001e400", Huge},
                                                       {L"-1e400", -Huge}};
    for (const auto& [text, number] : numbers)
        EXPECT_EQ(LeadingNumber(text), number) << text.substr(0, 20);
    const std::wstring none[] = {L"",
                                 L"-",
                                 L".",
                                 L"e5",
                                 L"+-1",
                                 L"+ 1",
                                 L"1e",
                                 L"1e+",
                                 L"1e 5",
                                 L"2.4ex",
                                 L"0e99999999999999999999",
                                 L"1e-99999999999999999999",
                                 L"inf",
                                 L"nan",
                                 L"0x10",
                                 L"\u06615",
                                 L"0." + zeros + L"1"};
    for (const std::wstring& text : none)
        EXPECT_EQ(LeadingNumber(text), 0) << text.substr(0, 20);
}

TEST(Quantities, LeaveTheLocaleAlone)
{
    const test::LocaleWatch watch;
    Speed speed;
    Size size;
    for (int round = 0; round < 3000; ++round) {
        speed.Initialize(L"2.4 GHz");
        size.Initialize(speed.ToString());
        EXPECT_STREQ(Bandwidth(size.ToString()).ToString(), L"2.0 bps");
        EXPECT_EQ(Version(Count(round).ToString()), Version(std::int64_t{round}));
    }
}

TEST(Name, KeepsTextsUnchangedUpToTheFirstZeroAndComparesThemExactly)
{
    const wchar_t* nothing = nullptr;
    EXPECT_STREQ(Name(L"ab\0cd"s).ToString(), L"ab");
    EXPECT_STREQ(Name(L" a<b ").ToString(), L" a<b ");
    for (const Name& empty : {Name(nothing), Name(SharedText())}) {
        EXPECT_STREQ(empty.ToString(), L"");
        EXPECT_FALSE(empty.HasValue());
    }
    EXPECT_TRUE(Name(L"text") == Name(L"text"));
    EXPECT_FALSE(Name(L"text") == Name(L"TEXT"));
    EXPECT_FALSE(Name(SharedText()) == Name(L"text"));
    EXPECT_THROW(static_cast<void>(Name(L"text") == Name(SharedText())), _com_error);  // without a buffer
}

TEST(Resolution, ReadsTwoEdgesAndCoversEitherOrientation)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L" 1920 x\t1080", L"1920x1080"},  {L"1920*1080x3", L"1920x1080"},
        {L"1920X1080 @ 60", L"1920x1080"}, {L"007x08", L"7x8"},
        {L"65535x1", L"65535x1"},
    };
    for (const auto& [text, shown] : rows) {
        Resolution resolution;
        EXPECT_TRUE(resolution.Initialize(text)) << text;
        EXPECT_TRUE(resolution.HasValue()) << text;
        EXPECT_STREQ(resolution.ToString(), shown);
    }
    const wchar_t* nothing = nullptr;
    for (const wchar_t* refused : {L"65536x1", L"1x4294967297", L"1920x0", L"0x1080", L"1920x", L"x1080",
                                   L"1920-1080", L"-1x1", L"1920", L"", nothing}) {
        Resolution resolution(1, 1);
        EXPECT_FALSE(resolution.Initialize(refused)) << refused;
        EXPECT_FALSE(resolution.HasValue()) << refused;
        EXPECT_STREQ(resolution.ToString(), L"");
    }
    EXPECT_FALSE(Resolution(8, 7) == Resolution(8, 6));
    EXPECT_FALSE(Resolution(8, 7) == Resolution(9, 7));
    const Resolution required(1280, 720);
    for (const wchar_t* enough : {L"1280x720", L"1080x1920", L"1279x9999"})
        EXPECT_TRUE(Resolution(enough).Covers(required)) << enough;
    for (const wchar_t* small : {L"1280x719", L"700x9999", L""})
        EXPECT_FALSE(Resolution(small).Covers(required)) << small;
    EXPECT_FALSE(required.Covers(Resolution()));
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

TEST(Version, PacksItsFieldsAndKeepsItsText)
{
    const std::tuple<const wchar_t*, std::uint64_t, std::size_t> rows[] = {
        // text, quantity, error lines
        {L"8.15.10.2702", Pack(8, 15, 10, 2702), 0},
        {L"1,2-3 4", Pack(1, 2, 3, 4), 0},
        {L"1.2.3.4.5Z", Pack(1, 2, 3, 4) + L'Z', 0},
        {L"1.2.3.x", Pack(1, 2, 3), 1},
        {L"1_70000", Pack(1) | 70000ULL << 32, 0},
        {L"6.7601a.3", 6 << 16, 1},
        {L"1.2.3.4.x", Pack(1, 2, 3, 4), 0},
        {L"..1..2..", Pack(1, 2), 0},
        {L"18446744073709551616", 0, 1},
        {L"9.0c", 9 << 16, 1},
        {L"...", 0, 0},
        {L"A", L'A', 0},
    };
    for (const auto& [text, quantity, errorLines] : rows) {
        const test::LogCapture log(1);
        EXPECT_EQ(Version(text).Quantity(), quantity) << text;
        EXPECT_EQ(log.Lines(), std::vector<std::wstring>(errorLines, L"ERR Error in Version::Quantity."));
        EXPECT_STREQ(Version(text).ToString(), text);
    }
    Version version;
    EXPECT_TRUE(version.Set(std::wstring(L"1.2")));
    EXPECT_EQ(version, Version(L"1.2"));
    EXPECT_EQ(version = L"3.4", Version(L"3.4"));
    EXPECT_STREQ(Version(nullptr).ToString(), L"");
    EXPECT_STREQ(Version().ToString(), L"0.0");
    EXPECT_STREQ(Version(std::int64_t{42}).ToString(), L"42");
    EXPECT_LT(Version(L"9.0B"), Version(L"9.0C"));
    EXPECT_LT(Version(L"9.0C"), Version(L"10.0"));  // by number, not by text
    EXPECT_FALSE(Version(L"10") < Version(L"9"));
    EXPECT_EQ(Version(L"6.1"), Version(L"6.1.0.0"));
    EXPECT_FALSE(Version(L"9") == Version(L"10"));
}

TEST(DeviceID, ReadsTheIdsOfRealHardware)
{
    const auto rows = test::ReadRows("ids.txt");
    ASSERT_GE(rows.size(), 18U);
    for (const std::wstring& row : rows) {
        const auto fields = test::Split(row, L';');  // the id, its text, its parts
        const DeviceID id(fields[0]);
        EXPECT_EQ(id.ToString(), fields[1] == L"=" ? fields[0] : fields[1]);
        EXPECT_EQ(id.Vendor() + L"/" + id.Device() + L"/" + id.Subsystem() + L"/" + id.Revision(), fields[2]);
        EXPECT_TRUE(id.HasValue()) << row;
    }
    EXPECT_STREQ(DeviceID(L"BTHENUM\\DEV_0211223344556\\7").ToString(), L"BTHENUM\\DEV_0211223344556");
    EXPECT_FALSE(DeviceID(L"").HasValue());
    EXPECT_FALSE(DeviceID().HasValue());

    const auto text = [](auto... numbers) {
        return std::wstring(DeviceID::FromNumbers(static_cast<std::uint32_t>(numbers)...).ToString());
    };
    EXPECT_EQ(text(0x10DE, 0x2684, 0x88EF1043, 0xA1), L"PCI\\VEN_10DE&DEV_2684&SUBSYS_88EF1043&REV_A1");
    EXPECT_EQ(text(0x8086, 0x46, 0, 2), L"PCI\\VEN_8086&DEV_0046&REV_02");
    EXPECT_EQ(text(0, 1, 2, 3) + text(0x10005, 1, 2, 3) + text(1, 0x10000, 2, 3) + text(1, 2, 3, 0x100), L"");
}

TEST(DeviceID, DetectsVirtualDevicesAndMatchingKinds)
{
    for (const wchar_t* id : {L"ROOT\\SPACEPORT\\0000", L"swd\\x", L"VMBUS\\{GUID}\\{GUID}",
                              L"PCI\\VEN_15AD&DEV_07C0", L"HDAUDIO\\FUNC_01&VEN_1AF4&DEV_0022"})
        EXPECT_TRUE(DeviceID(id).IsVirtual()) << id;
    for (const wchar_t* id : {L"PCI\\VEN_1000&DEV_0054", L"USB\\VID_1234&PID_5678", L"ROOT"})
        EXPECT_FALSE(DeviceID(id).IsVirtual()) << id;
    EXPECT_EQ(DeviceID(L"swd\\x").Bus() + DeviceID(L"ROOT").Bus(), L"SWD");

    const DeviceID full(L"PCI\\VEN_10DE&DEV_1C03&SUBSYS_61623842&REV_A1");
    for (const wchar_t* same : {L"pci\\ven_10de&dev_1c03", L"PCI\\VEN_10DE&DEV_1C03&REV_A1&CC_0300"}) {
        EXPECT_TRUE(full.Matches(DeviceID(same))) << same;
        EXPECT_TRUE(DeviceID(same).Matches(full)) << same;
    }
    for (const wchar_t* other :
         {L"PCI\\VEN_10DE&DEV_1C03&SUBSYS_61623843&REV_A1", L"PCI\\VEN_10DE&DEV_1C03&REV_A2",
          L"PCI\\VEN_10DE&DEV_1C04&SUBSYS_61623842&REV_A1", L"PCI\\VEN_10DF&DEV_1C03&SUBSYS_61623842&REV_A1",
          L"HDAUDIO\\VEN_10DE&DEV_1C03", L"PCI\\VEN_10DE&CC_0300"}) {
        EXPECT_FALSE(full.Matches(DeviceID(other))) << other;
        EXPECT_FALSE(DeviceID(other).Matches(full)) << other;
    }
    EXPECT_TRUE(DeviceID(L"PCI\\VEN_10DE&CC_0300").Matches(DeviceID(L"PCI\\VEN_10DE&CC_0300\\1")));
    EXPECT_FALSE(DeviceID(L"IDE\\DISKST31000").Matches(DeviceID(L"IDE\\DISKST3100")));
    EXPECT_FALSE(DeviceID(L"").Matches(DeviceID(L"")));
}

}  // namespace
}  // namespace kel
