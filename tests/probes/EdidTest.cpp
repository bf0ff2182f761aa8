#include "probes/graphics/Edid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "support/Edids.h"
#include "support/LogCapture.h"
#include "support/ScratchKey.h"

namespace kel {
namespace {

using test::Bytes;

std::wstring Show(const Bytes& bytes)
{
    const std::optional<MonitorInfo> monitor = ReadEdid(bytes);
    return monitor ? test::ShowEdid(*monitor) : L"(none)";
}

/// An EDID with a name, a mode and a size, whose extension was not recorded.
Bytes Sample()
{
    const auto edids = test::ReadEdids();
    return std::ranges::find(edids, "dell-p2415q-dp", &test::Edid::source)->bytes;
}

TEST(Edid, MatchesAnotherReaderAndIsRejectedWhenTruncatedOrChanged)
{
    const auto edids = test::ReadEdids();
    ASSERT_GE(edids.size(), 40U);
    for (const auto& [source, answer, bytes] : edids)
        EXPECT_EQ(Show(bytes), answer) << source;
    const Bytes sample = Sample();
    for (std::size_t place = 0; place < sample.size(); ++place) {
        EXPECT_EQ(Show({sample.begin(), sample.begin() + static_cast<int>(place)}), L"(none)") << place;
        Bytes wrong = sample;
        ++wrong[place];
        EXPECT_EQ(Show(wrong), L"(none)") << place;
        EXPECT_EQ(Show(test::Summed(wrong)) == L"(none)", place < 8) << place;
    }
}

TEST(Edid, LeavesUnreportedFactsEmpty)
{
    using Changes = std::map<std::size_t, BYTE>;
    const Changes noMode = {{54, 0}, {55, 0}, {72, 0}, {73, 0}, {90, 0}, {91, 0}, {108, 0}, {109, 0}};
    Changes filler = noMode;
    for (std::size_t place = 54; place < 72; ++place)
        filler[place] = 1;  // 1x1
    const std::pair<Changes, const wchar_t*> rows[] = {
        {filler, L"DISPLAY\\DELA0BE||240|530|300|2016"},
        {{{71, 0x9E}, {59, 0x1C}, {61, 0x20}}, L"DISPLAY\\DELA0BE|3840x1080|238|527|296|2016"},  // interlaced
        {noMode, L"DISPLAY\\DELA0BE||240|530|300|2016"},
        {{{21, 0}, {22, 0}}, L"DISPLAY\\DELA0BE|3840x2160||||2016"},             // a projector
        {{{21, 0x4F}, {22, 0}}, L"DISPLAY\\DELA0BE|3840x2160||||2016"},          // a ratio
        {{{21, 52}, {22, 28}}, L"DISPLAY\\DELA0BE|3840x2160|233|520|280|2016"},  // 16 mm off
        {{{17, 255}}, L"DISPLAY\\DELA0BE|3840x2160|238|527|296|"},
        {{{8, 0}, {9, 0}}, L"|3840x2160|238|527|296|2016"},
    };
    for (const auto& [changes, answer] : rows) {
        Bytes bytes = Sample();
        for (const auto& [place, value] : changes)
            bytes[place] = value;
        EXPECT_EQ(Show(test::Summed(bytes)), std::wstring(L"DELL P2415Q|") + answer);
    }
    const std::pair<const char*, const wchar_t*> names[] = {
        {"Thirteen here", L"Thirteen here"}, {"  Two \n \n      ", L"Two"},        {"\n            ", L""},
        {"ANNA\x01planted!", L"ANNA"},       {"Default string", L"Default strin"},
    };
    for (const auto& [name, answer] : names) {
        Bytes bytes = Sample();
        const BYTE kind[] = {0, 0, 0, 0xFC, 0};
        const auto place = std::search(bytes.begin(), bytes.end(), std::begin(kind), std::end(kind));
        std::copy_n(name, 13, place + 5);
        EXPECT_STREQ(ReadEdid(test::Summed(bytes))->name.ToString(), answer);
        place[2] = 1;  // no text, by its first three bytes
        EXPECT_STREQ(ReadEdid(test::Summed(bytes))->name.ToString(), L"");
    }
    Bytes later = Sample();
    std::copy_n(later.begin() + 54, 18, later.begin() + 72);
    std::fill_n(later.begin() + 54, 18, BYTE{1});
    EXPECT_EQ(ReadEdid(test::Summed(later))->nativeResolution.ToString(), std::wstring(L"3840x2160"));
    // A second name counts where the first is blank.
    Bytes two = Sample();
    const char* text = "\n            ";
    for (std::size_t place = 54; place < 126; place += 18) {
        if (two[place] != 0 || (two[place + 3] != 0xFC && two[place + 3] != 0xFF))
            continue;
        two[place + 3] = 0xFC;
        std::copy_n(text, 13, two.begin() + static_cast<int>(place) + 5);
        text = "Second\n      ";
    }
    EXPECT_STREQ(ReadEdid(test::Summed(two))->name.ToString(), L"Second");
}

TEST(Edid, PrefersTheOverrideToTheMonitorsOwn)
{
    const test::ScratchKey machine(HKEY_LOCAL_MACHINE);
    const std::wstring instance = L"DISPLAY\\DEL40A5\\5&1&0&UID1";
    const std::wstring key = L"SYSTEM\\CurrentControlSet\\Enum\\" + instance + L"\\Device Parameters";
    Bytes own = Sample(), other = own;
    other[17] = 20;
    other = test::Summed(other);
    const test::LogCapture log(2);
    EXPECT_FALSE(ReadMonitorEdid(instance));
    EXPECT_FALSE(ReadMonitorEdid(L""));
    machine.Write(key, L"EDID", REG_BINARY, own.data(), own.size());
    EXPECT_STREQ(ReadMonitorEdid(instance)->year->ToString(), L"2016");
    machine.Write(key + L"\\EDID_OVERRIDE", L"0", REG_BINARY, other.data(), other.size());
    EXPECT_STREQ(ReadMonitorEdid(instance)->year->ToString(), L"2010");
    EXPECT_TRUE(log.Lines().empty());
    machine.Write(key + L"\\EDID_OVERRIDE", L"0", REG_BINARY, other.data(), 127);
    EXPECT_STREQ(ReadMonitorEdid(instance)->year->ToString(), L"2016");
    EXPECT_EQ(log.Lines(),
              std::vector<std::wstring>{L"WARN A monitor's EDID is not valid: DISPLAY\\DEL40A5"});
}

}  // namespace
}  // namespace kel
