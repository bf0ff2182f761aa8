#include "detectors/ScsiControllers.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

TEST(ScsiControllers, AreOfTheKindThatTheirClassCodeTells)
{
    const struct {
        const wchar_t* id;
        std::vector<std::wstring> compatible;
        const wchar_t* kind;
    } rows[] = {
        {L"PCI\\VEN_9005&DEV_0080", {L"PCI\\VEN_9005&CC_010000", L"PCI\\CC_0100"}, L"SCSI"},
        {L"PCI\\VEN_1000&DEV_0097", {L"PCI\\VEN_1000&DEV_0097&REV_02", L"pci\\cc_010700"}, L"SAS"},
        {L"PCI\\VEN_8086&DEV_2822", {L"PCI\\CC_0104"}, L"RAID"},
        {L"PCI\\VEN_144D&DEV_A808", {L"PCI\\CC_010802"}, L"NVMe"},
        {L"PCI\\VEN_8086&DEV_A102", {L"PCI\\CC_010601"}, L""},
        {L"PCI\\VEN_8086&DEV_A102", {L"PCI\\CC_01"}, L""},
        {L"PCI\\VEN_8086&DEV_A102", {}, L""},
        {L"", {}, L""},
        {L"ROOT\\ISCSIPRT", {}, L"virtual"},
        {L"VMBUS\\{BA6163D9}", {L"VMBUS\\X"}, L"virtual"},
        {L"PCI\\VEN_15AD&DEV_07C0", {L"PCI\\CC_0107"}, L"virtual"},
        {L"PCI\\VEN_1AF4&DEV_1004", {L"PCI\\CC_0100"}, L"virtual"},
    };
    for (const auto& row : rows) {
        ScsiInfo controller;
        controller.deviceId = DeviceID(row.id);
        controller.compatibleIds = row.compatible;
        EXPECT_EQ(GetControllerKind(controller), row.kind) << row.id;
    }
}

}  // namespace
}  // namespace kel
