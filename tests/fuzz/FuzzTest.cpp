#include <gtest/gtest.h>

#include <iostream>

#include "control/RegistrationScript.h"
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

Text Configured(const Text& text)
{
    static System system;
    system.SetConfiguration(
        L"<session_id>s</session_id><user_id>u</user_id><referrer_id>r</referrer_id><debug>0</debug>");
    system.SetConfiguration(text);
    const int level = Log::Instance().GetLevel();
    Log::Instance().SetLevel(LogOff);
    return system.SessionID() + L"|" + system.UserID() + L"|" + system.ReferrerID() +
           (system.IsDebug() ? L"|1|" : L"|0|") + std::to_wstring(level);
}

template <typename Quantity>
Text Amount(Quantity quantity, std::uint64_t (Quantity::*amount)() const, const Text& text)
{
    quantity.Initialize(text.c_str());
    return std::to_wstring((quantity.*amount)()) + L"=" + quantity.ToString();
}

Text Shown(const std::vector<ScriptKey>& keys)
{
    const auto data = [](const ScriptData& shown) {
        const auto* text = std::get_if<Text>(&shown);
        return text != nullptr ? L"='" + *text : L"=" + std::to_wstring(std::get<std::uint32_t>(shown));
    };
    constexpr const wchar_t* Words[] = {L" ", L"NoRemove ", L"ForceRemove ", L"Delete "};
    Text shown;
    for (const ScriptKey& key : keys) {
        shown += Words[static_cast<int>(key.rule)] + key.name;
        shown += (key.defaultValue ? data(*key.defaultValue) : L"") + L"{";
        for (const ScriptValue& value : key.values)
            shown += L"val " + value.name + data(value.data) + L"{}";
        shown += Shown(key.keys);
    }
    return shown + L"}";
}

/// A parser: real texts for it, separated by ";;", its answer, and the answer by the rule.
struct Target {
    const char* name;
    const wchar_t* samples;
    Text (*parser)(const Text&);
    Text (*rule)(const Text&);
};

constexpr const wchar_t* Amounts =
    L"  2 GB\t;;1.5KB;;8,589 b;;16 tB;;-1.0 MB;;+2.4 GHz;;3200 MHz;;7 kHz;;10 mbPS;;1e3 kbps;;1E+308 Gbps";

const Target Targets[] = {
    {"Groups",
     L"<x><groups><group id=\"71060\"><value>Windows 7</value></group><group index='3' id=\"7\"></group>;;"
     L"<groups><group id = 7 index=2 ><value>a&lt;b</value></group><group id=7><value></group></groups>",
     [](auto& text) {
         SystemValues().AddValues(text);
         GroupsText groups(text);
         GroupEntry entry;
         Text shown;
         while (groups.Next(entry))
             shown += entry.id + L"[" + entry.index + L"]=" + Buffer(entry.value) + L";";
         return shown;
     },
     Rules::Groups},
    {"Configuration",
     L"<x><debug>1</debug><session_id>5f0c</session_id><user_id>me</user_id><logging>3</logging></x>;;"
     L"<logging>9</logging><referrer_id>demo</referrer_id><debug>0</debug>",
     Configured, Rules::Configuration},
    {"Version", L"6.1.7601;;8.15.10.2702;;9.0C;;10.0.19045.3803;;1,2-3 4;;5_0 b;;0.0;;4.09.00.0904+",
     [](auto& text) { return std::to_wstring(Version(text).Quantity()); }, Rules::Version},
    {"Size", Amounts, [](auto& text) { return Amount(Size(), &Size::Bytes, text); },
     [](auto& text) { return Rules::Quantity(text, false, 1024, L"B KB MB GB TB"); }},
    {"Speed", Amounts, [](auto& text) { return Amount(Speed(), &Speed::Hertz, text); },
     [](auto& text) { return Rules::Quantity(text, true, 1000, L"Hz KHz MHz GHz"); }},
    {"Bandwidth", Amounts,
     [](auto& text) { return Amount(Bandwidth(text), &Bandwidth::BitsPerSecond, text); },
     [](auto& text) { return Rules::Quantity(text, true, 1024, L"bps Kbps Mbps Gbps"); }},
    {"DeviceID",
     L"PCI\\VEN_8086&DEV_1916&SUBSYS_07251028&REV_07\\3&11583659&0;;usb\\vid_046d&pid_c52b&rev_1201&mi_00;;"
     L"HDAUDIO\\FUNC_01&VEN_10EC&REV_1001;;ACPI\\PNP0C0A\\1;;*PNP0501;;ACPI\\VEN_INTC&DEV_33A0",
     [](auto& text) {
         const DeviceID id(text);
         return id.ToString() + (L"|" + id.Vendor() + L"|" + id.Device() + L"|") + id.Subsystem() + L"|" +
                id.Revision();
     },
     Rules::DeviceID},
    {"RegistrationScript",
     L"HKCR\n{\n Demo.1 = s 'It''s a class'\n {\n CLSID = s '{3D7C6027}'\n '1' = d '0x1F'\n }\n Delete O\n};;"
     L"HKCR { NoRemove CLSID { ForceRemove {3D7C} = s '' { val Model = s free val N = d &H7 B { } Key } } };;"
     L"HKCR { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a { a "
     L"{ a { a { a { a { a { a { a { } } } } } } } } } } } } } } } } } } } } } } } } } } } } } } } }",
     [](auto& text) {
         try {
             return Shown(RegistrationScript::Parse(text));
         } catch (const ScriptError&) {
             return Rules::Refused;
         }
     },
     Rules::Script},
    {"ServiceAnswer",
     L"71060|71063,71424;;71218;;|,7||;; 12x,-1;;<html>502</html>;;\xEF\xBB\xBF,\xC3\xA9;;"
     L"71060|\xF0\x9F\x98\x80|7;;\xED\xA0\x80,\xC0\x80|\xF4\x90\x80\x80,\xE2\x82\xAC",
     [](auto& bytes) {
         const Text text = FromUtf8(Rules::Bytes(bytes + Rules::End));
         WantedGroups wanted;
         wanted.Assign(text, L"");
         return Rules::Wanted(text, [&wanted](const Text& id) { return wanted.Contains(GroupID(id)); });
     },
     Rules::ServiceAnswer},
};

std::uint64_t Setting(const char* name, std::uint64_t otherwise)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::strtoull(value, nullptr, 10) : otherwise;
}

class Fuzz : public testing::TestWithParam<Target> {};

TEST_P(Fuzz, AgreesWithTheRule)
{
    const Target& target = GetParam();
    const std::uint64_t seed = Setting("KEL_FUZZ_SEED", 71060), count = Setting("KEL_FUZZ_COUNT", 2000);
    std::cout << target.name << ": " << count << " texts of seed " << seed << std::endl;
    test::Generator generator{std::mt19937_64(seed), Rules::All(target.samples, L"([^]+?)(?:;;|$)"),
                              Rules::All(target.samples, L"(</?\\w+>?|\\w+| *[^\\w;] *)")};
    std::set<std::size_t> answers;
    for (std::uint64_t number = 1; number <= count; ++number) {
        const Text text = generator.Next(), expected = target.rule(text);
        ASSERT_EQ(target.parser(text), expected) << "text " << number << ": " << testing::PrintToString(text);
        answers.insert(std::hash<Text>()(expected));
    }
    EXPECT_GT(answers.size(), count / 50) << "too many texts get the same answer";
}

INSTANTIATE_TEST_SUITE_P(, Fuzz, testing::ValuesIn(Targets),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace
}  // namespace kel
