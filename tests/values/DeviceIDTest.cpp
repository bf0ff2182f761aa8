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
        {L"pci\\ven_10de&dev_1c03&subsys_61623842&rev_a1", nullptr, L"10DE", L"1C03", L"61623842", L"A1"},
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
        {L"*pnp0c0a", nullptr, L"PNP", L"0C0A", L"", L""},
        {L"ACPI\\GenuineIntel_-_Intel64_Family_6_Model_78", nullptr, L"", L"", L"", L""},
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

}  // namespace
}  // namespace kel
