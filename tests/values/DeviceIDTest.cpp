#include "values/DeviceID.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

TEST(DeviceID, ReadsTheIdsOfRealHardware)
{
    const struct {
        const wchar_t *id, *text, *vendor, *device, *subsystem, *revision;
    } rows[] = {
        {L"PCI\\VEN_8086&DEV_1916&SUBSYS_07251028&REV_07", nullptr, L"8086", L"1916", L"07251028", L"07"},
        {L"pci\\ven_10de&dev_1c03&subsys_61623842&rev_a1", L"PCI\\VEN_10DE&DEV_1C03&SUBSYS_61623842&REV_A1",
         L"10DE", L"1C03", L"61623842", L"A1"},
        {L"PCI\\VEN_1002&DEV_67DF&SUBSYS_34171462&REV_C7\\4&2283F625&0&0019",
         L"PCI\\VEN_1002&DEV_67DF&SUBSYS_34171462&REV_C7", L"1002", L"67DF", L"34171462", L"C7"},
        {L"PCI\\VEN_8086&CC_0300", nullptr, L"8086", L"", L"", L""},
        {L"USB\\VID_046D&PID_C52B&REV_1201&MI_00", nullptr, L"046D", L"C52B", L"", L"1201"},
        {L"USB\\VID_0781&PID_5581\\4C530001230405112345", L"USB\\VID_0781&PID_5581", L"0781", L"5581", L"",
         L""},
        {L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0295&SUBSYS_10280725&REV_1000", nullptr, L"10EC", L"0295",
         L"10280725", L"1000"},
        {L"ACPI\\PNP0C0A\\1", L"ACPI\\PNP0C0A", L"PNP", L"0C0A", L"", L""},
        {L"ACPI\\VEN_INT&DEV_33A0", nullptr, L"INT", L"33A0", L"", L""},
        {L"ACPI\\MSFT0101", nullptr, L"MSFT", L"0101", L"", L""},
        {L"*pnp0c0a", L"*PNP0C0A", L"PNP", L"0C0A", L"", L""},
        {L"ACPI\\GenuineIntel_-_Intel64_Family_6_Model_78", L"ACPI\\GENUINEINTEL_-_INTEL64_FAMILY_6_MODEL_78",
         L"", L"", L"", L""},
        {L"ROOT\\BASICDISPLAY\\0000", L"ROOT\\BASICDISPLAY", L"", L"", L"", L""},
        {L"PCI\\VEN_80861&DEV_19&SUBSYS_0725102&REV_07A", nullptr, L"", L"", L"", L""},
        {L"PCI\\VEN_80G6&DEV_&VEN&_&&", nullptr, L"", L"", L"", L""},
        {L"PCI\\PNP0C0A", nullptr, L"", L"", L"", L""},
        {L"", nullptr, L"", L"", L"", L""},
        {L"\\\\", L"\\", L"", L"", L"", L""},
        {L"*", nullptr, L"", L"", L"", L""},
    };
    for (const auto& row : rows) {
        const DeviceID id{std::wstring(row.id)};
        EXPECT_STREQ(id.ToString(), row.text != nullptr ? row.text : row.id);
        EXPECT_EQ(id.Vendor(), row.vendor) << row.id;
        EXPECT_EQ(id.Device(), row.device) << row.id;
        EXPECT_EQ(id.Subsystem(), row.subsystem) << row.id;
        EXPECT_EQ(id.Revision(), row.revision) << row.id;
        EXPECT_EQ(id.HasValue(), *row.id != L'\0') << row.id;
    }
    EXPECT_STREQ(DeviceID().ToString(), L"");
}

TEST(DeviceID, IsOneFromAllItsFormsAndTellsVirtualDevices)
{
    const auto text = [](std::uint32_t vendor, std::uint32_t device, std::uint32_t subsystem,
                         std::uint32_t revision) {
        return std::wstring(DeviceID::FromNumbers(vendor, device, subsystem, revision).ToString());
    };
    EXPECT_EQ(text(0x10DE, 0x2684, 0x88EF1043, 0xA1), L"PCI\\VEN_10DE&DEV_2684&SUBSYS_88EF1043&REV_A1");
    EXPECT_EQ(text(0x8086, 0x46, 0, 2), L"PCI\\VEN_8086&DEV_0046&REV_02");
    EXPECT_EQ(text(0, 1, 2, 3) + text(0x10005, 1, 2, 3) + text(1, 0x10000, 2, 3) + text(1, 2, 3, 0x100), L"");

    const std::tuple<const wchar_t*, const wchar_t*, bool> virtualIds[] = {
        {L"ROOT\\SPACEPORT\\0000", L"ROOT", true},
        {L"swd\\x", L"SWD", true},
        {L"VMBUS\\{GUID}\\{GUID}", L"VMBUS", true},
        {L"PCI\\VEN_15AD&DEV_07C0", L"PCI", true},
        {L"PCI\\VEN_1AF4&DEV_1001", L"PCI", true},
        {L"HDAUDIO\\FUNC_01&VEN_1AF4&DEV_0022", L"HDAUDIO", true},
        {L"PCI\\VEN_1000&DEV_0054", L"PCI", false},
        {L"USB\\VID_1234&PID_5678", L"USB", false},
        {L"ROOT", L"", false},
        {L"", L"", false},
    };
    for (const auto& [id, bus, isVirtual] : virtualIds) {
        EXPECT_EQ(DeviceID(id).Bus(), bus) << id;
        EXPECT_EQ(DeviceID(id).IsVirtual(), isVirtual) << id;
    }

    const wchar_t* full = L"PCI\\VEN_10DE&DEV_1C03&SUBSYS_61623842&REV_A1";
    const std::tuple<const wchar_t*, const wchar_t*, bool> pairs[] = {
        {full, L"pci\\ven_10de&dev_1c03", true},
        {full, L"PCI\\VEN_10DE&DEV_1C03&REV_A1&CC_0300", true},
        {full, L"PCI\\VEN_10DE&DEV_1C03&SUBSYS_61623843&REV_A1", false},
        {full, L"PCI\\VEN_10DE&DEV_1C03&REV_A2", false},
        {full, L"PCI\\VEN_10DE&DEV_1C04&SUBSYS_61623842&REV_A1", false},
        {full, L"PCI\\VEN_10DF&DEV_1C03&SUBSYS_61623842&REV_A1", false},
        {full, L"HDAUDIO\\VEN_10DE&DEV_1C03", false},
        {full, L"PCI\\VEN_10DE&CC_0300", false},
        {L"PCI\\VEN_10DE&CC_0300", L"PCI\\VEN_10DE&CC_0300\\1", true},
        {L"IDE\\DISKST31000", L"IDE\\DiskST31000\\5&1", true},
        {L"IDE\\DISKST31000", L"IDE\\DISKST3100", false},
        {L"", L"", false},
    };
    for (const auto& [one, other, isSame] : pairs) {
        EXPECT_EQ(DeviceID(one).Matches(DeviceID(other)), isSame) << one << ' ' << other;
        EXPECT_EQ(DeviceID(other).Matches(DeviceID(one)), isSame) << other << ' ' << one;
    }
}

}  // namespace
}  // namespace kel
