#include "probes/wmi/WMI.h"

#include <comdef.h>
#include <gmock/gmock.h>

#include "probes/Variant.h"
#include "support/FakeWmi.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

using testing::ElementsAre;

const std::wstring Processors = L"SELECT * FROM Win32_Processor", Drives = L"SELECT * FROM Win32_DiskDrive",
                   Bioses = L"SELECT * FROM Win32_BIOS", Sounds = L"SELECT * FROM Win32_SoundDevice",
                   Boards = L"SELECT * FROM Win32_BaseBoard", CDRoms = L"SELECT * FROM Win32_CDROMDrive";

/// A value that has no text and no number.
const test::FakeProperty Unconvertible = {_variant_t(1L, VT_ERROR)};

/// The answers of all six queries, and their return values, "1" for true.
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

TEST(WMI, WaitsForAtMostTwoHundredObjectsAndReleasesThemAll)
{
    test::FakeWmiData data;
    test::FakeProperty null;
    null.value.vt = VT_NULL;
    data.objects[Drives].assign(201, {{L"Model", {L"Disk"}}});
    data.objects[Bioses] = {{{L"Version", Unconvertible}, {L"name", {L"Bios"}}}};
    data.objects[Boards] = {{{L"Manufacturer", {L"A"}}, {L"Product", {L"P"}}, {L"Version", {L"V"}}},
                            {{L"Manufacturer", {L"B"}}, {L"Product", null}, {L"Version", {L"x", CIM_EMPTY}}}};
    {
        const test::FakeWmi fake(data);
        const Answers got;
        EXPECT_EQ(got.results, "111010");
        EXPECT_EQ(got.drives.size(), 200U);
        EXPECT_EQ(
            got.bios.name + L"|" + got.board.manufacturer + L"|" + got.board.product + got.board.version,
            L"Bios|B|V");
        std::wstring arguments = L"ROOT\\CIMV2 0; blanket 10 0 3 3 0; ";
        for (const wchar_t* count : {L"1", L"200", L"1", L"1", L"200", L"1"})
            arguments += L"WQL 48; next -1 " + std::wstring(count) + L"; ";
        EXPECT_EQ(data.arguments, arguments);
    }
    EXPECT_EQ(data.references, 0U);
}

TEST(WMI, KeepsEarlierFactsWhenACallOrConversionFails)
{
    test::FakeWmiData refusing, blanketless, failing, none, odd;
    refusing.connect = E_ACCESSDENIED;
    blanketless.refusesBlanket = true;
    failing.query = E_INVALIDARG;
    for (test::FakeWmiData* data : {&refusing, &blanketless, &failing, &none}) {
        const test::FakeWmi fake(*data);
        const ULONG without = data->references;
        const test::LogCapture log(2);
        const FailureScope noted;
        const bool isReached = data == &failing || data == &none;
        EXPECT_EQ(Answers().results, isReached ? "110000" : "000000");
        std::vector<std::wstring> lines;
        if (!isReached)
            lines = {L"WARN WMI cannot be reached: 0x80070005"};
        for (const std::wstring& query : {Processors, Drives, Bioses, Sounds, Boards, CDRoms}) {
            if (data == &failing)
                lines.push_back(L"WARN WMI refused: " + query + L": 0x80070057");
        }
        EXPECT_EQ(log.Lines(), lines);
        EXPECT_EQ(noted.Found().sources.size(), data == &none ? 0U : 6U);
        EXPECT_EQ(data->queries.size(), isReached ? 6U : 0U);
        EXPECT_EQ(data->references, without);
    }
    EXPECT_EQ(Answers().results, "000000");  // no apartment

    odd.objects[Processors] = {
        {{L"Name", {L"kept"}}, {L"MaxClockSpeed", {L"fast"}}, {L"Caption", {L"never reached"}}}};
    odd.objects[Drives] = {{{L"Model", Unconvertible}}};
    odd.objects[Bioses] = {{{L"name", {L"kept"}}, {L"Manufacturer", Unconvertible}}};
    odd.objects[Sounds] = {{{L"Name", Unconvertible}}};
    odd.objects[Boards] = {{{L"Product", Unconvertible}}};
    odd.objects[CDRoms] = {{{L"Drive", Unconvertible}}};
    odd.next = E_FAIL;  // what came before it counts
    const test::FakeWmi fake(odd);
    const test::LogCapture log(1);
    const FailureScope scope;
    const Answers got;
    EXPECT_TRUE(scope.Found().hasException);
    EXPECT_EQ(got.results, "111111");
    EXPECT_EQ(got.cpu.name + got.cpu.caption + got.bios.name, L"keptkept");
    EXPECT_THAT(log.Lines(),
                ElementsAre(L"ERR Error in WMI CPU detection.", L"ERR Error in WMI::GetMotherboardValues.",
                            L"ERR Error in WMI GetCDRomValues."));
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
    const std::pair<_variant_t, const wchar_t*> rows[] = {
        // text, unsigned, signed
        {_variant_t(L"18446744073709551615"), L"18446744073709551615 - -"},  // a 64-bit number comes as text
        {_variant_t(L"4294967295"), L"4294967295 4294967295 -"},
        {_variant_t(BYTE(200)), L"200 200 200"},
        {_variant_t(70000L), L"70000 70000 70000"},
        {_variant_t(short(-2)), L"-2 - -2"},
        {_variant_t(-1L), L"-1 4294967295 -1"},  // WMI hands an unsigned number out as a signed one
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
