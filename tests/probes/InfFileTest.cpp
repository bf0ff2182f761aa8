#include "probes/setup/InfFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "probes/setup/SetupLib.h"
#include "support/LogCapture.h"
#include "support/PlantedDevice.h"
#include "support/RequireWine.h"
#include "support/TestFolder.h"

namespace kel {
namespace {

constexpr const wchar_t* Found = L"PCI\\VEN_8086&DEV_1916&SUBSYS_07251028";
const std::string Head = "[Version]\nSignature=\"$Windows NT$\"\n";
const std::string Plain = Head + "[Manufacturer]\n%m%=Models\n[Strings]\nm=Maker\nd=Adapter\n";
const std::string Model = "%d%=Install, PCI\\VEN_8086&DEV_1912, PCI\\VEN_8086&DEV_1916&SUBSYS_07251028\n";
const std::string Other =
    "%d%=Install, PCI\\VEN_8086&DEV_1916&SUBSYS_FFFFFFFF, PCI\\VEN_10DE&DEV_1916&REV_02\n";

/// An INF file where the system looks for a bare name.
struct InfFiles : testing::Test {
    const std::wstring name = L"kel" + test::NewName() + L".inf";
    const std::filesystem::path path = L"C:\\windows\\inf\\" + name;

    InfFiles() { test::RequireWine(); }

    void Plant(const std::string& inf) const { std::ofstream(path, std::ios::binary) << inf; }

    ~InfFiles() override { std::filesystem::remove(path); }
};

TEST_F(InfFiles, FindADevicesOwnIdAmongItsRelatives)
{
    std::string many = Plain + "[Models]\n" + std::string(1 << 20, ';') + "\n";
    for (int line = 0; line < 20000; ++line)
        many += "%d%=Install" + std::to_string(line) + ", PCI\\VEN_8086&DEV_0002\n";
    const std::pair<std::string, bool> rows[] = {
        {Plain + "[Models.NTamd64]\n" + Other + "[Models]\n" + Other + Model + Other, true},
        {Plain + "[Models]\n" + Other, false},  // a relative's line alone
        {Head + "[Manufacturer]\n%m%=A\n%m%=B,NTx86,NTamd64.6.1\n[A]\n%d%=I,PCI\\VEN_8086\n[B.NTamd64]\n" +
             Other + "[B.NTamd64.6.1]\n" + Model,
         true},
        {Plain + "[Models.NT]\n" + Other + "[Models.NTamd64]\n" + Model, true},  // the line does not say so
        {Plain + "[Models.NT]\n" + Model, true},
        {Plain + "[Models.NTia64]\n" + Model, false},
        {Plain + "[Models]\n%d%=PCI\\VEN_8086&DEV_1916&SUBSYS_07251028, PCI\\VEN_8086&DEV_1917\n", false},
        {Head + "[Models]\n" + Model, false},
        {"[Manufacturer\n%m=Models,,\n]]=\n\"", false},
        {many + Model, true},
    };
    const std::vector<std::wstring> ids = {L"PCI\\VEN_8086&DEV_1916&SUBSYS_07251028&REV_07",
                                           L"pci\\ven_8086&dev_1916&subsys_07251028",
                                           L"PCI\\VEN_8086&DEV_1912"};
    SetupEntryPoints table;
    SetupEntryPoints::Load(table);
    static DWORD style = 0;
    table.openInfFile = [](PCWSTR file, PCWSTR ofClass, DWORD styles, UINT* line) {
        style = styles;
        return SetupOpenInfFileW(file, ofClass, styles, line);
    };
    static int closed = 0;
    table.closeInfFile = [](HINF file) {
        ++closed;
        SetupCloseInfFile(file);
    };
    for (const auto& [inf, isFound] : rows) {
        Plant(inf);
        const std::wstring found = InfFile(table, name.c_str()).FindModel(L"ven_8086&dev_1916", ids);
        EXPECT_EQ(found, isFound ? Found : L"") << inf.substr(0, 300);
    }
    EXPECT_EQ(style, DWORD{INF_STYLE_WIN4});
    EXPECT_GE(closed, 9);  // the malformed one need not be opened
}

TEST_F(InfFiles, RefineTheIdOfAnIntelAdapter)
{
    test::PlantedDevice adapter(test::DisplayClass);
    adapter.With(SPDRP_HARDWAREID, Found);
    const wchar_t* matching = L"PCI\\ven_8086&Dev_1916";
    const std::tuple<const wchar_t*, std::wstring, const wchar_t*> rows[] = {
        // matching id, INF file, and the id that is given
        {matching, name, Found},
        {matching, L"", L"PCI\\VEN_8086&DEV_1916"},
        {matching, L"missing.inf", L"PCI\\VEN_8086&DEV_1916"},
        {L"PCI\\VEN_8086&CC_0300", name, L"PCI\\VEN_8086&CC_0300"},  // any id would do
        {L"PCI\\VEN_10DE&DEV_1916", name, L"PCI\\VEN_10DE&DEV_1916"},
    };
    Plant(Plain + "[Models]\n" + Model);
    const test::LogCapture log(3);
    for (const auto& [id, inf, given] : rows) {
        adapter.Device(L"MatchingDeviceID", id).Driver(L"InfPath", inf);
        std::vector<GpuInfo> adapters;
        SetupLib::Instance().GetGpuInfo(adapters);
        EXPECT_STREQ(adapters.back().deviceId.ToString(), given) << id << inf;
    }
    const auto lines = log.Lines();
    EXPECT_EQ(std::ranges::count(lines, L"TRACE Is Intel."), 4);
    EXPECT_EQ(std::ranges::count(lines, L"TRACE Inf Path: " + name), 2);
    EXPECT_EQ(std::ranges::count(lines, std::wstring(L"TRACE Got 2ID: ") + Found), 1);
}

}  // namespace
}  // namespace kel
