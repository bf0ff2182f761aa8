#include "probes/WMI.h"

#include <comdef.h>
#include <gmock/gmock.h>

#include "probes/Variant.h"
#include "support/FakeWmi.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr const wchar_t* Processors = L"SELECT * FROM Win32_Processor";
constexpr const wchar_t* Drives = L"SELECT * FROM Win32_DiskDrive";
constexpr const wchar_t* Bioses = L"SELECT * FROM Win32_BIOS";
constexpr const wchar_t* Sounds = L"SELECT * FROM Win32_SoundDevice";
constexpr const wchar_t* Boards = L"SELECT * FROM Win32_BaseBoard";
constexpr const wchar_t* CDRoms = L"SELECT * FROM Win32_CDROMDrive";

/// A value that has no text and no number.
const test::FakeProperty Unconvertible = {_variant_t(1L, VT_ERROR)};

test::FakeProperty Null()
{
    test::FakeProperty property;
    property.value.vt = VT_NULL;
    return property;
}

/// What all six queries answer, and what they return, "1" for true.
struct Answers {
    WMI wmi;
    CpuInfo cpu;
    std::vector<DiskInfo> drives;
    BiosInfo bios;
    SoundInfo sound;
    BoardInfo board;
    std::vector<OpticalInfo> cdroms;
    std::string results;

    Answers()
    {
        for (const bool result :
             {wmi.GetCpuInfo(cpu), wmi.GetHardDriveValues(drives), wmi.GetBiosValues(bios),
              wmi.GetSoundValues(sound), wmi.GetMotherboardValues(board), wmi.GetCDRomValues(cdroms)})
            results += result ? '1' : '0';
    }
};

TEST(WMI, FillsEachRecordFromItsProperties)
{
    test::FakeWmiData data;
    data.objects[Processors] = {{{L"Name", {L"Chip"}},
                                 {L"Manufacturer", {L"Maker"}},
                                 {L"MaxClockSpeed", {2400L, CIM_UINT32}},
                                 {L"Caption", {L"Model 5"}}},
                                {{L"Name", {L"second"}}}};
    for (long i = 0; i < 201; ++i)
        data.objects[Drives].push_back(
            {{L"Model", {L"Disk"}}, {L"Name", {L"\\\\.\\DISK"}}, {L"Index", {i, CIM_SINT32}}});
    data.objects[Bioses] = {{{L"Version", Unconvertible},
                             {L"name", {L"Bios"}},
                             {L"Manufacturer", {L"Maker"}},
                             {L"SMBIOSBIOSVersion", {L"1.2"}}}};
    data.objects[Sounds] = {{{L"Name", {L"Sound"}}, {L"DeviceID", {L"hdaudio\\f\\1"}}},
                            {{L"Name", {L"second"}}}};
    data.objects[Boards] = {
        {{L"Manufacturer", {L"A"}}, {L"Product", {L"P"}}, {L"Version", {L"V"}}},
        {{L"Manufacturer", {L"B"}}, {L"Product", Null()}, {L"Version", {L"lost", CIM_EMPTY}}}};
    data.objects[CDRoms] = {
        {{L"Name", {L"CD"}}, {L"PNPDeviceID", {L"IDE"}}, {L"Drive", {L"D:"}}, {L"MediaType", {L"CD-ROM"}}}};
    {
        const test::FakeWmi fake(data);
        const test::LogCapture log(3);
        const Answers got;
        EXPECT_EQ(got.results, "111111");
        EXPECT_EQ(got.cpu.name + L"|" + got.cpu.vendor + L"|" + got.cpu.caption, L"Chip|Maker|Model 5");
        EXPECT_EQ(got.cpu.speed.Hertz(), 2400000000U);
        ASSERT_EQ(got.drives.size(), 200U);
        EXPECT_STREQ(got.drives[199].model.ToString(), L"Disk");
        EXPECT_STREQ(got.drives[199].deviceName.ToString(), L"\\\\.\\DISK");
        EXPECT_EQ(got.drives[199].number, 199);
        EXPECT_EQ(got.bios.name + L"|" + got.bios.manufacturer + L"|" + got.bios.version, L"Bios|Maker|1.2");
        EXPECT_EQ(got.sound.name.ToString() + (L"|" + got.sound.instanceId) + got.sound.deviceId.ToString(),
                  L"Sound|HDAUDIO\\F\\1HDAUDIO\\F");
        EXPECT_EQ(got.board.manufacturer + L"|" + got.board.product + L"|" + got.board.version, L"B||V");
        ASSERT_EQ(got.cdroms.size(), 1U);
        std::wstring cdrom;
        for (const Name& text :
             {got.cdroms[0].name, got.cdroms[0].instanceId, got.cdroms[0].drive, got.cdroms[0].mediaType})
            cdrom += text.ToString() + std::wstring(L"|");
        EXPECT_EQ(cdrom, L"CD|IDE|D:|CD-ROM|");
        std::wstring arguments = L"ROOT\\CIMV2 0; blanket 10 0 3 3 0; ";
        for (const wchar_t* count : {L"1", L"200", L"1", L"1", L"200", L"1"})
            arguments += L"WQL 48; next -1 " + std::wstring(count) + L"; ";
        EXPECT_EQ(data.arguments, arguments);
        EXPECT_THAT(log.Lines(), Contains(L"TRACE WMI value: ").Times(3));
    }
    EXPECT_EQ(data.references, 0U);
}

TEST(WMI, AnswersFalseWhenItCannotConnect)
{
    test::FakeWmiData refusing, blanketless;
    refusing.connect = E_ACCESSDENIED;
    blanketless.refusesBlanket = true;
    for (test::FakeWmiData* data : {&refusing, &blanketless}) {
        const test::FakeWmi fake(*data);
        const ULONG without = data->references;
        const test::LogCapture log(3);
        const Answers got;
        EXPECT_EQ(got.results, "000000");
        EXPECT_THAT(log.Lines(),
                    ElementsAre(L"WARN WMI cannot be reached: 0x80070005", L"TRACE WMI init failure."));
        EXPECT_TRUE(data->queries.empty());
        EXPECT_EQ(data->references, without);
    }
    EXPECT_EQ(Answers().results, "000000");  // no apartment
}

TEST(WMI, KeepsWhatItHasWhenAQueryFailsOrAValueCannotBeConverted)
{
    test::FakeWmiData failing, none;
    failing.query = E_INVALIDARG;
    for (test::FakeWmiData* data : {&failing, &none}) {
        const test::FakeWmi fake(*data);
        const test::LogCapture log(2);
        EXPECT_EQ(Answers().results, "110000");
        const auto* start = data == &none ? L"TRACE WMI has no object: " : L"WARN WMI refused: ";
        const auto* end = data == &none ? L": 0x00000001" : L": 0x80070057";
        EXPECT_THAT(log.Lines(), testing::AllOf(testing::SizeIs(6), testing::Each(testing::StartsWith(start)),
                                                testing::Each(testing::EndsWith(end))));
        EXPECT_THAT(data->queries, ElementsAre(Processors, Drives, Bioses, Sounds, Boards, CDRoms));
    }

    test::FakeWmiData odd;
    odd.objects[Processors] = {
        {{L"Name", {L"kept"}}, {L"MaxClockSpeed", {L"fast"}}, {L"Caption", {L"never reached"}}}};
    odd.objects[Drives] = {{{L"Model", Unconvertible}}};
    odd.objects[Bioses] = {{{L"name", {L"kept"}}, {L"Manufacturer", Unconvertible}}};
    odd.objects[Sounds] = {{{L"Name", Unconvertible}}};
    odd.objects[Boards] = {{{L"Product", Unconvertible}}};
    odd.objects[CDRoms] = {{{L"Drive", Unconvertible}}};
    odd.next = E_FAIL;  // what came before it counts
    {
        const test::FakeWmi fake(odd);
        const test::LogCapture log(1);
        const Answers got;
        EXPECT_EQ(got.results, "111111");
        EXPECT_EQ(got.cpu.name + got.cpu.caption + got.bios.name, L"keptkept");
        EXPECT_THAT(log.Lines(), ElementsAre(L"ERR Error in WMI CPU detection.",
                                             L"ERR Error in WMI::GetMotherboardValues.",
                                             L"ERR Error in WMI GetCDRomValues."));
    }
    EXPECT_EQ(odd.references, 0U);
}

TEST(WMI, ConvertsWhateverTypeAValueHas)
{
    const auto show = [](const VARIANT& value, auto convert) -> std::wstring {
        try {
            return std::to_wstring(convert(value));
        } catch (const _com_error&) {
            return L"-";
        }
    };
    _variant_t array;
    array.vt = VT_ARRAY | VT_BSTR;
    array.parray = SafeArrayCreateVector(VT_BSTR, 0, 2);
    const std::tuple<_variant_t, const wchar_t*> rows[] = {
        // text, unsigned, signed
        {_variant_t(L"18446744073709551615"), L"18446744073709551615 - -"},  // a 64-bit number comes as text
        {_variant_t(L"4294967295"), L"4294967295 4294967295 -"},
        {_variant_t(BYTE(200)), L"200 200 200"},
        {_variant_t(short(-2)), L"-2 - -2"},
        {_variant_t(-1L), L"-1 4294967295 -1"},  // WMI hands an unsigned number out as a signed one
        {_variant_t(true), L"-1 4294967295 -1"},
        {_variant_t(false), L"0 0 0"},
        {_variant_t(), L" 0 0"},
        {array, L" - -"},
    };
    for (const auto& [value, expected] : rows)
        EXPECT_EQ(
            ShowVariant(value) + L" " + show(value, VariantUnsigned) + L" " + show(value, VariantSigned),
            expected);
}

}  // namespace
}  // namespace kel
