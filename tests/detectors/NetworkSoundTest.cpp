#include <gmock/gmock.h>

#include "detectors/Detectors.h"
#include "probes/SoundEndpoints.h"
#include "support/FakeSound.h"
#include "support/LogCapture.h"
#include "support/PlantedNetwork.h"
#include "support/TestSession.h"

namespace kel {
namespace {

using test::PlantedNetwork;
using test::PlantedSound;

constexpr const wchar_t* SoundQuery = L"SELECT * FROM Win32_SoundDevice";

TEST(NetworkDevice, GoesOnWithoutASource)
{
    const PlantedNetwork network(
        {LR"(PCI\VEN_0001&DEV_0001\1|A|6|0|HC|2|0)", LR"(PCI\VEN_0001&DEV_0002\1|B|6|0|HCR|1|1000)"});
    static ULONG calls, needed;
    const auto growing = [](ULONG most) {
        return [most](ULONG, ULONG flags, void*, IP_ADAPTER_ADDRESSES* list, ULONG* size) -> ULONG {
            EXPECT_EQ(flags, 0x2FU);  // without all lists
            EXPECT_GE(*size, needed);
            if (++calls < most)
                return *size = needed = 20000 * calls, ERROR_BUFFER_OVERFLOW;
            *list = {};
            list->AdapterName = const_cast<char*>("{00000001-0000-0000-0000-000000000000}");
            list->Ipv6IfIndex = 1;
            list->IfType = IF_TYPE_IEEE80211;
            list->OperStatus = IfOperStatusDown;
            list->TransmitLinkSpeed = 2000000;
            return NO_ERROR;
        };
    };
    const auto byLongAddress = [](sockaddr* address, DWORD* index) -> DWORD {
        return *index = 0, address->sa_family == AF_INET6 ? NO_ERROR : ERROR_NETWORK_UNREACHABLE;
    };
    using Functions = NetworkFunctions;
    // What is stored of the first adapter (name, kind, connected, speed), and the lines of levels 1 and 2.
    const std::pair<std::function<void(Functions&)>, const wchar_t*> rows[] = {
        {[&](Functions& f) { f.getAddresses = growing(3); }, L"B|wired|Yes|1.0 Kbps|"},
        {[&](Functions& f) { f.getTable.clear(), f.getAddresses = growing(3); }, L"B|wireless|No|2.0 Mbps|"},
        {[&](Functions& f) { f.getAddresses = growing(99); },
         L"B|wired|Yes|1.0 Kbps|WARN GetAdaptersAddresses failed with error: 111"},
        {[](Functions& f) { f.getTable = [](auto) { return DWORD{8}; }; },
         L"A||||WARN GetIfTable2 failed with error: 8"},
        {[](Functions& f) { f.getTable = [](auto) -> DWORD { throw 1; }; },
         L"A||||ERR Error in reading the interface table."},
        {[](Functions& f) { f.getBestInterface = [](auto, auto) { return DWORD{1232}; }; },
         L"B|wired|Yes|1.0 Kbps|"},
        {[&](Functions& f) { f.getBestInterface = byLongAddress; }, L"A|wired|No||"},
        {[](Functions& f) { f = {}; }, L"A||||"},
    };
    for (const auto& [spoil, expected] : rows) {
        calls = 0, needed = 0;
        Functions functions = network.functions;
        spoil(functions);
        const test::TestSession session;
        const test::LogCapture log(2);
        NetworkDevice().Detect(functions);
        std::wstring shown = session.Texts({72702, 72704, 72707, 72708});
        for (const std::wstring& line : log.Lines())
            shown += line;
        EXPECT_EQ(shown, expected);
        EXPECT_LE(calls, 5U);
    }
}

TEST(Sound, PutsTheDeviceThatIsHeardFirst)
{
    enum { None = -1, Unknown = -2, NoService = -3 };
    const std::wstring codec = L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0295\\4&1";
    const std::wstring hdmi = L"HDAUDIO\\FUNC_01&VEN_10DE&DEV_009E\\5&1";
    const std::wstring cable = L"ROOT\\MEDIA\\0000", set = L"USB\\VID_0D8C&PID_0012&MI_00\\6&";
    const std::wstring a = codec + L"|codec", b = a + L"\n" + hdmi + L"|HDMI";
    const std::wstring c = cable + L"|cable|VBAudioVACWDM\n" + a, sets = set + L"1|one\n" + set + L"2|two";
    const auto out = [](const std::wstring& device) { return test::FakeEndpoint{eRender, L"{1}." + device}; };
    // The devices, the endpoints and which of them is the default; whether there is sound, how many devices,
    // outputs and inputs, the names with "*" for the default and "?" where that is unknown, and the log.
    const std::tuple<std::wstring, std::vector<test::FakeEndpoint>, int, const wchar_t*> rows[] = {
        {hdmi + L"|HDMI", {out(hdmi)}, 0, L"Yes|1|1|0| HDMI*"},
        {b, {out(hdmi), out(codec)}, None, L"Yes|2|2|0| codec HDMI"},
        {b, {out(hdmi), out(codec)}, 0, L"Yes|2|2|0| HDMI* codec"},
        {c, {out(cable), out(codec)}, 1, L"Yes|2|2|0| codec* cable"},
        {c, {out(cable)}, 0, L"Yes|2|1|0| cable* codec"},
        {sets, {out(set + L"2")}, 0, L"Yes|2|1|0| two* one"},
        {L"BTHENUM\\X\\1", {}, None, L"Yes|1|0|0| "},
        {L"USB\\VID_0582&PID_0096\\5&1|MIDI", {}, None, L"Yes|1|0|0| MIDI"},
        {L"", {out(codec)}, 0, L"Yes|1|1|0| *"},
        {L"", {}, None, L"No|0|0|0| ?"},
        {L"", {{eCapture, L""}}, None, L"Yes|0|0|1| ?"},
        {a, {out(codec)}, Unknown, L"Yes|1|1|0| codec? WARN GetDefaultAudioEndpoint failed: 0x80004005"},
        {a, {}, NoService, L"Yes|1|7|0| codec? WARN EnumAudioEndpoints failed: 0x80070424"},
    };
    test::FakeWmiData wmi;
    const test::FakeWmi fakeWmi(wmi);
    for (const auto& [devices, endpoints, defaultOutput, expected] : rows) {
        const PlantedSound sound(test::Split(devices, L'\n'));
        wmi.objects[SoundQuery] = sound.wmi;
        test::FakeSoundData service;
        service.endpoints = endpoints;
        service.defaultOutput = std::max(defaultOutput, -1);
        service.enumerate = defaultOutput == NoService ? HRESULT_FROM_WIN32(1060) : S_OK;
        service.getDefault = defaultOutput == Unknown ? E_FAIL : HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
        const test::FakeSound fakeSound(service);
        const test::LogCapture log(2);
        const test::TestSession session;
        Sound().Detect({[] { return 7U; }});
        std::wstring shown = session.Texts({72800, 72801, 72807, 72808});
        for (const SystemValue& value : session.values) {
            if (value.ID().Group().Number() == 72802)
                shown += L" " + value.Text();
            else if (value.ID().Group().Number() == 72805)
                shown += value.Text() == L"Yes" ? L"*" : value.Text() == L"No" ? L"" : L"?";
        }
        for (const std::wstring& line : log.Lines())
            shown += line.find(L"WMI") == line.npos ? L" " + line : L"";
        EXPECT_EQ(shown, expected);
    }
}

}  // namespace
}  // namespace kel
