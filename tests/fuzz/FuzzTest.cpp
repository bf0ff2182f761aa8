#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>

#include "diag/Log.h"
#include "fuzz/Rules.h"
#include "run/System.h"
#include "run/store/GroupsText.h"
#include "service/Utf8.h"
#include "values/Bandwidth.h"
#include "values/DeviceID.h"
#include "values/Size.h"
#include "values/Speed.h"
#include "values/Version.h"

namespace kel {
namespace {

using test::Rules, test::Text, test::Texts;

/// What a parser is given, and whether its answer is one that it may give. Nothing may be thrown.
struct Target {
    const char* name;
    const wchar_t* samples;  ///< real texts, separated by ";;"
    bool (*holds)(const Text&);
};

bool AgreesWithTheRule(const Text& text)
{
    SystemValues().AddValues(text);
    GroupsText groups(text);
    GroupEntry entry;
    Text shown;
    while (groups.Next(entry))
        shown += entry.id + L"[" + entry.index + L"]=" + Buffer(entry.value) + L";";
    return shown == Rules::Groups(text);
}

bool KeepsWhatTheTextLacks(const Text& text)
{
    static System system;
    system.SetConfiguration(L"<session_id>s</session_id><user_id>u</user_id><referrer_id>r</referrer_id>");
    system.SetConfiguration(text);
    const int level = Log::Instance().GetLevel();
    Log::Instance().SetLevel(LogOff);
    const auto isKept = [&text](const Text& value, const wchar_t* old) {
        return value == old || (!value.empty() && text.find(value) != Text::npos);
    };
    return level <= LogMaximum && isKept(system.SessionID(), L"s") && isKept(system.UserID(), L"u") &&
           isKept(system.ReferrerID(), L"r");
}

/// The packed fields, written and read again, are the same.
bool PacksOneWay(const Text& text)
{
    const std::uint64_t packed = Version(text).Quantity();
    Text fields;
    for (int shift = 48; shift >= 0; shift -= 16)
        fields += std::to_wstring(packed >> shift & 0xFFFF) + L".";
    return Version(fields).Quantity() == packed;
}

/// What is printed reads as the same amount, but for the decimals that printing cuts off.
template <typename Quantity>
bool PrintsWhatItRead(Quantity quantity, std::uint64_t (Quantity::*amount)() const, const Text& text)
{
    quantity.Initialize(text.c_str());
    const auto read = static_cast<double>((quantity.*amount)());
    const Text printed = quantity.ToString();
    quantity.Initialize(printed.c_str());
    return std::abs(static_cast<double>((quantity.*amount)()) - read) <= read / 10;
}

bool KeepsItsParts(const Text& text)
{
    const DeviceID id(text), again(id.ToString());
    const auto parts = [](const DeviceID& shown) {
        return shown.ToString() + (L"|" + shown.Vendor()) + L"|" + shown.Device() + L"|" + shown.Subsystem() +
               L"|" + shown.Revision();
    };
    return parts(id) == parts(again) && id.Device().find_first_not_of(L"0123456789ABCDEF") == Text::npos;
}

bool FindsEachOfItsIds(const Text& bytes)
{
    const Text text = FromUtf8(std::string(bytes.begin(), bytes.end()));
    WantedGroups wanted;
    wanted.Assign(text, L"");
    const Texts ids = Rules::All(text, L"([^|,]+)");
    return std::ranges::all_of(ids, [&wanted](const Text& id) { return wanted.Contains(GroupID(id)); });
}

constexpr const wchar_t* Amounts =
    L"  2 GB\t;;1.5KB;;8,589 b;;16 tB;;-1.0 MB;;+2.4 GHz;;3200 MHz;;7 kHz;;10 mbPS;;1e3 kbps;;1E+308 Gbps";

const Target Targets[] = {
    {"Groups",
     L"<x><groups><group id=\"71060\"><value>Windows 7</value></group><group index='3' id=\"7\"></group>;;"
     L"<groups><group id = 7 index=2 ><value>a&lt;b</value></group><group id=7><value></group></groups>",
     AgreesWithTheRule},
    {"Configuration",
     L"<x><debug>1</debug><session_id>5f0c</session_id><user_id>me</user_id><logging>3</logging></x>;;"
     L"<logging>9</logging><referrer_id>demo</referrer_id><debug>0</debug>",
     KeepsWhatTheTextLacks},
    {"Version", L"6.1.7601;;8.15.10.2702;;9.0C;;10.0.19045.3803;;1,2-3 4;;5_0 b;;0.0;;4.09.00.0904+",
     PacksOneWay},
    {"Size", Amounts, [](auto& text) { return PrintsWhatItRead(Size(), &Size::Bytes, text); }},
    {"Speed", Amounts, [](auto& text) { return PrintsWhatItRead(Speed(), &Speed::Hertz, text); }},
    {"Bandwidth", Amounts,
     [](auto& text) { return PrintsWhatItRead(Bandwidth(text), &Bandwidth::BitsPerSecond, text); }},
    {"DeviceID",
     L"PCI\\VEN_8086&DEV_1916&SUBSYS_07251028&REV_07\\3&11583659&0;;usb\\vid_046d&pid_c52b&rev_1201&mi_00;;"
     L"HDAUDIO\\FUNC_01&VEN_10EC&REV_1001;;ACPI\\PNP0C0A\\1;;*PNP0501;;ACPI\\VEN_INTC&DEV_33A0",
     KeepsItsParts},
    {"ServiceAnswer",
     L"71060|71063,71424;;71218;;|,7||;; 12x,-1;;<html>502</html>;;\xEF\xBB\xBF,\xC3\xA9;;"
     L"71060|\xF0\x9F\x98\x80|7;;\xED\xA0\x80,\xC0\x80|\xF4\x90\x80\x80,\xE2\x82\xAC",
     FindsEachOfItsIds},
};

std::uint64_t Setting(const char* name, std::uint64_t otherwise)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::strtoull(value, nullptr, 10) : otherwise;
}

class Fuzz : public testing::TestWithParam<Target> {};

TEST_P(Fuzz, GivesAnAnswerThatItMayGive)
{
    const Target& target = GetParam();
    const std::uint64_t seed = Setting("KEL_FUZZ_SEED", 71060), count = Setting("KEL_FUZZ_COUNT", 2000);
    std::cout << target.name << ": " << count << " texts of seed " << seed << std::endl;
    test::Generator generator{std::mt19937_64(seed), Rules::All(target.samples, L"([^]+?)(?:;;|$)"),
                              Rules::All(target.samples, L"(</?\\w+>?|\\w+| *[^\\w;] *)")};
    for (std::uint64_t number = 1; number <= count; ++number) {
        const Text text = generator.Next();
        ASSERT_TRUE(target.holds(text)) << "text " << number << ": " << testing::PrintToString(text);
    }
}

INSTANTIATE_TEST_SUITE_P(, Fuzz, testing::ValuesIn(Targets),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace
}  // namespace kel
