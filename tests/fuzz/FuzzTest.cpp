// Hostile input for each parser of texts, and for the readers of devices' answers.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

#include "diag/Log.h"
#include "fuzz/Generator.h"
#include "fuzz/StorageTarget.h"
#include "probes/cpu/CpuTopology.h"
#include "probes/graphics/Edid.h"
#include "probes/graphics/VulkanManifest.h"
#include "probes/setup/DriverDate.h"
#include "program/files/ReadSnapshot.h"
#include "program/text/UserError.h"
#include "run/System.h"
#include "run/store/GroupsText.h"
#include "service/Utf8.h"
#include "support/Edids.h"
#include "support/HostInput.h"
#include "values/DeviceID.h"
#include "values/Size.h"
#include "verdict/files/SupportFile.h"

namespace kel {
namespace {

using namespace test;

/// The entries of a groups text, computed a second time in the simplest way.
Text GroupsByTheRule(const Text& text)
{
    const auto token = [](const Text& group, const Text& name) {
        return All(group, name + L"[<>= '\"]*([^<>= '\"]+)|$").front();
    };
    const Text open = L"<value>";
    Text rest = text.substr(std::min(text.find(L"<groups>"), text.size())), shown;
    for (std::size_t end = 0; rest.find(L"<group ") != Text::npos; rest.erase(0, end + 8)) {
        end = rest.find(L"</group>");
        if (end == Text::npos)
            break;
        const Text group = rest.substr(0, end);
        shown += token(group, L"id") + L"[" + token(group, L"index") + L"]=";
        const std::size_t start = rest.find(open), close = rest.find(L"</value>", start);
        if (close != Text::npos)
            shown += rest.substr(start + open.size(), close - start - open.size()).c_str();
        shown += L";";
    }
    return shown;
}

bool AgreesWithTheRule(const Text& text)
{
    SystemValues().AddValues(text);
    GroupsText groups(text);
    GroupEntry entry;
    Text shown;
    while (groups.Next(entry))
        shown += entry.id + L"[" + entry.index + L"]=" + Buffer(entry.value) + L";";
    return shown == GroupsByTheRule(text);
}

/// The level stays within the levels.
bool IsConfiguration(const Text& text)
{
    static System system;
    system.SetConfiguration(text);
    const bool isKept = Log::Instance().GetLevel() <= LogMaximum;
    Log::Instance().SetLevel(LogOff);
    return isKept;
}

/// An id reads again as it prints, and an amount prints with its unit.
bool PrintsWhatItRead(const Text& text)
{
    const DeviceID id(text);
    Size size;
    size.Initialize(text.c_str());
    return DeviceID(id.ToString()).ToString() == std::wstring_view(id.ToString()) &&
           std::wstring_view(size.ToString()).ends_with(L'B');
}

bool FindsEachOfItsIds(const Text& bytes)
{
    const Text text = FromUtf8(Narrow(bytes));
    WantedGroups wanted;
    wanted.Assign(text, L"", true);
    const auto isFound = [&wanted](const Text& id) { return wanted.Contains(GroupID(id)); };
    return std::ranges::all_of(All(text, L"([^|,]+)"), isFound);
}

/// What is read is possible in an EDID; header and checksum are corrected if it is long enough.
bool IsOfMonitor(const Text& text)
{
    std::vector<BYTE> edid(text.begin(), text.end());
    if (edid.size() < 128)
        return !ReadEdid(edid);
    edid[0] = edid[7] = 0;
    std::fill_n(edid.begin() + 1, 6, BYTE{0xFF});
    const auto monitor = ReadEdid(Summed(edid));
    const Text name = monitor ? monitor->name.ToString() : L"more than thirteen";
    return name.size() <= 13 && std::ranges::all_of(name, [](wchar_t letter) { return letter >= L' '; }) &&
           monitor->nativeResolution.Width() <= 4095 && monitor->nativeResolution.Height() <= 2 * 4095 &&
           monitor->width.has_value() == monitor->diagonal.has_value();
}

/// No more is counted than records fit in.
bool IsOfProcessors(const Text& text)
{
    const std::string answer = Narrow(text);
    const CpuTopology found = DecodeTopology(std::as_bytes(std::span(answer)));
    const auto most = static_cast<std::int32_t>(answer.size() / 8);
    return found.cores.value_or(1) > 0 && found.cores.value_or(0) + found.packages.value_or(0) <= most &&
           found.threads.value_or(0) <= 64 * most &&
           found.efficientCores.value_or(0) < found.cores.value_or(1);
}

bool Matches(const Text& text, const Text& pattern)
{
    return !All(text, L"^(" + pattern + L")$").empty();
}

Texts MonitorAnswers()
{
    Texts answers;
    for (const Edid& edid : ReadEdids())
        answers.emplace_back(edid.bytes.begin(), edid.bytes.end());
    return answers;
}

/// A file is read, and what was read is kept in another one; or it is refused in one line.
bool IsReadOrRefused(const Text& text)
{
    try {
        const Snapshot snapshot = program::ReadSnapshot(Narrow(text));
        return program::ReadSnapshot(WriteSupportFile(snapshot)).facts.size() == snapshot.facts.size();
    } catch (const program::UserError& error) {
        const std::string reason = error.what();
        return !reason.empty() && reason.size() < 200 && reason.find('\n') == std::string::npos;
    }
}

/// Each frame gets an answer of a known type, and only a check that was asked for gets one verdict.
bool AnswersEachFrame(const Text& text)
{
    const FakeSteps steps;
    program::Conversation conversation = steps.Start();
    bool isAsked = false;
    for (const std::string& frame : ReadAll(Narrow(text), 100)) {
        const std::string answer = conversation.Answer(frame);
        const bool isValues = answer.starts_with(R"({"type":"values",)");
        const bool isVerdict = answer.starts_with(R"({"type":"verdict",)");
        if (frame.size() > program::MaxFrame || (isVerdict && !isAsked) ||
            answer.find("7.8") != answer.npos ||
            (!isValues && !isVerdict && !answer.starts_with(R"({"type":"error",)")))
            return false;
        isAsked = (isAsked || isValues) && !isVerdict;
    }
    return true;
}

/// Frames of a check, one with lengths and contents that do not fit together.
Texts HostInputs()
{
    const std::string ask = program::MakeFrame(
        R"({"type": "ask", "product": "demo", "session": "01234567-89ab-cdef-0123-456789abcdef"})");
    const std::string check = program::MakeFrame(R"({"type": "check"})");
    return {Wide(ask + check), Wide(check), Wide(ask + ask.substr(0, 40) + check)};
}

/// The input of a parser, and whether its answer is allowed. Nothing may be thrown.
const struct Target {
    const char* name;
    const wchar_t* samples;  ///< real texts, separated by ";;"
    bool (*holds)(const Text&);
    Texts answers = {};  ///< instead of texts: bytes as characters
} Targets[] = {
    {"Groups",
     L"<x><groups><group id=\"71060\"><value>Windows 7</value></group><group index='3' id=\"7\"></group>;;"
     L"<groups><group id = 7 index=2 ><value>a&lt;b</value></group><group id=7><value></group></groups>",
     AgreesWithTheRule},
    {"Configuration",
     L"<x><debug>1</debug><user_id>me</user_id><logging>3</logging></x>;;<logging>9</logging><debug>0",
     IsConfiguration},
    {"Values",
     L"PCI\\VEN_8086&DEV_1916&SUBSYS_07251028&REV_07\\3&11583659&0;;usb\\vid_046d&pid_c52b&rev_1201&mi_00;;"
     L"ACPI\\PNP0C0A\\1;;*PNP0501;;  2 GB\t;;1.5KB;;8,589 b;;-1.0 MB;;1E+308 TB",
     PrintsWhatItRead},
    {"ServiceAnswer",
     L"71060|71063,71424;;|,7||;; 12x,-1;;<html>502</html>;;\xEF\xBB\xBF,\xC3\xA9;;"
     L"71060|\xF0\x9F\x98\x80|7;;\xED\xA0\x80,\xC0\x80|\xF4\x90\x80\x80,\xE2\x82\xAC",
     FindsEachOfItsIds},
    {"Manifest",
     L"{\"file_format_version\": \"1.0.0\", \"ICD\": {\"library_path\": \".\\\\vulkan.dll\", "
     L"\"api_version\": "
     L"\"1.3.242\"}};;\"api_version\":\"1.2.\";;\"api_version\" : \"11111111111111111111111111111111\"",
     [](const Text& text) {
         return Matches(ReadVulkanVersion(Narrow(text)).value_or(Version()).ToString(), L"[0-9][0-9.]{0,31}");
     }},
    {"DriverDate", L"5-1-2024;;12-31-1999;;1-2-3",
     [](const Text& text) { return Matches(ReadDriverDate(text), L"|[1-9]\\d{3}-[01]\\d-[0-3]\\d"); }},
    {"Topology",
     nullptr,
     IsOfProcessors,
     {Wide(Little(0, 4) + Little(48, 4) + Little(0x100, 22) + Little(1, 2) + Little(3, 16) + Little(3, 4) +
           Little(48, 4) + Little(0, 40) + Little(2, 4) + Little(48, 4) + Little(0x800000000, 40))}},
    {"Files",
     L"{\"kel\":1,\"time\":\"t\",\"verdict\":{\"result\":\"pass\",\"title\":\"T\",\"requirements\":[{"
     L"\"result\":"
     L"\"fail\",\"label\":\"M\",\"needed\":\"any\",\"found\":\"\",\"recommended\":true,\"any "
     L"of\":[]}]},\"values\":"
     L"[{\"id\":71063,\"index\":0,\"value\":\"7.8 GB\",\"reason\":\"\"}],\"log\":[\"a\"]};;"
     L"{\"reports\":[{\"id\":1,\"received\":\"t\",\"values\":[{\"id\":\"5\",\"index\":1,\"value\":"
     L"\"\\u20ac\"}]}],"
     L"\"last\":1};;<groups><group index=\"0\" id=\"71063\"><value>7.8 &amp; GB</value></group><group "
     L"id=\"5\"/>"
     L"</groups>  ;;<?xml version=\"1.0\"?><!DOCTYPE a [<!ENTITY b \"c\">]><groups>&b;<![CDATA[x]]></groups>",
     IsReadOrRefused},
    {"Storage", nullptr, IsOfStorage, StorageAnswers()},
    {"Monitor", nullptr, IsOfMonitor, MonitorAnswers()},
    {"Host", nullptr, AnswersEachFrame, HostInputs()},
};

class Fuzz : public testing::TestWithParam<Target> {};

TEST_P(Fuzz, AnswersWithinItsRules)
{
    const Target& target = GetParam();
    const std::uint64_t seed = Setting("KEL_FUZZ_SEED", 71060), count = Setting("KEL_FUZZ_COUNT", 2000);
    std::cout << target.name << ": " << count << " texts of seed " << seed << std::endl;
    Generator generator{std::mt19937_64(seed), target.answers, Numbers()};
    if (target.samples != nullptr) {
        generator.samples = All(target.samples, L"([^]+?)(?:;;|$)");
        generator.pieces = All(target.samples, L"(</?\\w+>?|\\w+| *[^\\w;] *)");
    }
    for (std::uint64_t number = 1; number <= count; ++number) {
        const Text text = generator.Next();
        ASSERT_TRUE(target.holds(text)) << "text " << number << ": " << testing::PrintToString(text);
    }
}

INSTANTIATE_TEST_SUITE_P(, Fuzz, testing::ValuesIn(Targets),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace
}  // namespace kel
