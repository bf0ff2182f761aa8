#include "probes/Edid.h"

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

/// One with a name, a mode and a size, whose extension was not recorded.
Bytes Sample()
{
    const auto edids = test::ReadEdids();
    return std::ranges::find(edids, "dell-p2415q-dp", &test::Edid::source)->bytes;
}

TEST(Edid, IsReadAsAnotherProgramReadsIt)
{
    const auto edids = test::ReadEdids();
    ASSERT_GE(edids.size(), 40U);
    for (const auto& [source, answer, bytes] : edids)
        EXPECT_EQ(Show(bytes), answer) << source;
}

TEST(Edid, IsNothingWhenItIsCutOrAnyByteIsWrong)
{
    const Bytes sample = Sample();
    ASSERT_NE(Show(sample), L"(none)");
    for (std::size_t place = 0; place < sample.size(); ++place) {
        EXPECT_EQ(Show({sample.begin(), sample.begin() + static_cast<int>(place)}), L"(none)") << place;
        Bytes wrong = sample;
        ++wrong[place];
        EXPECT_EQ(Show(wrong), L"(none)") << place;
        EXPECT_EQ(Show(test::Summed(wrong)) == L"(none)", place < 8) << place;
    }
}

TEST(Edid, LeavesOutWhatAMonitorDoesNotSay)
{
    using Changes = std::map<std::size_t, BYTE>;
    Changes noMode;
    for (std::size_t start = 54; start < 126; start += 18)
        noMode[start] = noMode[start + 1] = 0;
    const std::pair<Changes, const wchar_t*> rows[] = {
        {{}, L"DELL P2415Q|DISPLAY\\DELA0BE|3840x2160|238|527|296|2016"},
        {{{71, 0x9E}, {59, 0x1C}, {61, 0x20}}, L"DELL P2415Q|DISPLAY\\DELA0BE|3840x1080|238|527|296|2016"},
        {noMode, L"DELL P2415Q|DISPLAY\\DELA0BE||240|530|300|2016"},
        {{{21, 0}, {22, 0}}, L"DELL P2415Q|DISPLAY\\DELA0BE|3840x2160||||2016"},             // a projector
        {{{21, 0x4F}, {22, 0}}, L"DELL P2415Q|DISPLAY\\DELA0BE|3840x2160||||2016"},          // a ratio
        {{{21, 16}, {22, 9}}, L"DELL P2415Q|DISPLAY\\DELA0BE|3840x2160||||2016"},            // another
        {{{21, 52}, {22, 28}}, L"DELL P2415Q|DISPLAY\\DELA0BE|3840x2160|233|520|280|2016"},  // 16 mm off
        {{{66, 0}, {67, 0}, {68, 0}}, L"DELL P2415Q|DISPLAY\\DELA0BE|3840x2160|240|530|300|2016"},
        {{{17, 0}}, L"DELL P2415Q|DISPLAY\\DELA0BE|3840x2160|238|527|296|"},
        {{{17, 255}}, L"DELL P2415Q|DISPLAY\\DELA0BE|3840x2160|238|527|296|"},
        {{{8, 0}, {9, 0}}, L"DELL P2415Q||3840x2160|238|527|296|2016"},
    };
    for (const auto& [changes, answer] : rows) {
        Bytes bytes = Sample();
        for (const auto& [place, value] : changes)
            bytes[place] = value;
        EXPECT_EQ(Show(test::Summed(bytes)), answer);
    }
    const std::pair<const char*, const wchar_t*> names[] = {
        {"Thirteen here", L"Thirteen here"}, {"  Two \n \n      ", L"Two"},        {"\n            ", L""},
        {"ANNA\x01planted!", L"ANNA"},       {"Default string", L"Default strin"},
    };
    for (const auto& [name, answer] : names) {
        Bytes bytes = Sample();
        const BYTE kind[] = {0, 0, 0, 0xFC, 0};
        auto place = std::search(bytes.begin(), bytes.end(), std::begin(kind), std::end(kind));
        ASSERT_NE(place, bytes.end());
        std::copy_n(name, 13, place + 5);
        EXPECT_STREQ(ReadEdid(test::Summed(bytes))->name.ToString(), answer);
        place[2] = 1;  // no text, by its first three bytes
        EXPECT_STREQ(ReadEdid(test::Summed(bytes))->name.ToString(), L"");
    }
}

TEST(Edid, IsTheOverrideBeforeTheMonitorsOwn)
{
    const test::ScratchKey machine(HKEY_LOCAL_MACHINE);
    const std::wstring instance = L"DISPLAY\\DEL40A5\\5&1&0&UID1";
    const std::wstring key = L"SYSTEM\\CurrentControlSet\\Enum\\" + instance + L"\\Device Parameters";
    Bytes own = Sample(), other = own;
    other[17] = 20;
    other = test::Summed(other);
    const auto year = [&instance] {
        const auto monitor = ReadMonitorEdid(instance);
        return monitor ? std::wstring(monitor->year->ToString()) : L"(none)";
    };
    const test::LogCapture log(2);
    EXPECT_EQ(year(), L"(none)");
    EXPECT_EQ(ReadMonitorEdid(L""), std::nullopt);
    machine.Write(key, L"EDID", REG_BINARY, own.data(), own.size());
    EXPECT_EQ(year(), L"2016");
    machine.Write(key + L"\\EDID_OVERRIDE", L"0", REG_BINARY, other.data(), other.size());
    EXPECT_EQ(year(), L"2010");
    EXPECT_TRUE(log.Lines().empty());
    machine.Write(key + L"\\EDID_OVERRIDE", L"0", REG_BINARY, other.data(), 127);
    EXPECT_EQ(year(), L"2016");
    EXPECT_EQ(log.Lines(),
              std::vector<std::wstring>{L"WARN The EDID of a monitor is wrong: DISPLAY\\DEL40A5"});
}

}  // namespace
}  // namespace kel
