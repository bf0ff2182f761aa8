#pragma once

#include <string>
#include <vector>

#include "support/FakeVolumes.h"
#include "support/StorageAnswers.h"

namespace kel::test {

enum DeviceClass : DWORD { OpticalClass = 0x4D36E965, DiskClass = 0x4D36E967, ScsiClass = 0x4D36E97B };

/// A device as the Setup API lists it. The path by which it is asked follows from its instance id.
struct ListedDevice {
    DeviceClass deviceClass;
    std::wstring instanceId, hardwareId, name, compatibleId, driverVersion;
    FakeDevice device;
};

/// What a machine's storage is, and what of it is stored: lines, each with a semicolon after it.
struct StorageMachine {
    const char* name;
    std::vector<ListedDevice> devices;
    std::vector<FakeDevice> disks;       ///< by their number
    std::vector<std::wstring> wmiDisks;  ///< models, by the number
    std::vector<std::wstring> wmiDrive;  ///< name, instance id, letter, media type
    std::vector<std::uint32_t> windowsDisks;
    std::map<wchar_t, FakeVolume> volumes;
    std::wstring stored;
};

inline FakeDevice Disk(int bus, const char* vendor, const char* product, const char* revision,
                       std::uint64_t bytes, int seeks, bool isRemovable = false)
{
    FakeDevice disk;
    disk.answers[DeviceProperty] = Descriptor(bus, vendor, product, revision, isRemovable);
    disk.answers[GeometryRequest] = Geometry(bytes);
    disk.answers[HotplugRequest] = HotplugInfo(isRemovable, bus == BusTypeUsb);
    if (seeks >= 0)
        disk.answers[SeekPenalty] = Flag(seeks > 0);
    return disk;
}

inline FakeDevice Numbered(int type, std::uint32_t number)
{
    FakeDevice device;
    device.answers[NumberRequest] = Number(type, number);
    return device;
}

inline FakeDevice Burner(std::uint32_t number, int bus, const std::vector<int>& profiles)
{
    FakeDevice drive = Numbered(FILE_DEVICE_CD_ROM, number);
    drive.answers[DeviceProperty] = Descriptor(bus, nullptr, "of the descriptor", "1", true);
    drive.answers[ConfigurationRequest] = Profiles(profiles);
    return drive;
}

inline ListedDevice Controller(const wchar_t* id, const wchar_t* name, const wchar_t* classCode,
                               const wchar_t* version)
{
    return {ScsiClass, std::wstring(id) + L"\\3&11583659&0&E8", id, name, classCode, version, {}};
}

constexpr std::uint64_t GB = 1ULL << 30;

/// What is stored where there is no optical drive.
inline const std::wstring NoOpticalDrive =
    LR"(
72100[0]=No; 72101[0]=0; 72102[0]=; 72103[0]=; 72104[0]=; 72105[0]=; 72106[0]=; 72300[0]=No; 72301[0]=No;
72302[0]=No; 72303[0]=No; 72304[0]=No;)";

inline std::vector<StorageMachine> StorageMachines()
{
    const ListedDevice spaces =
        Controller(L"ROOT\\SPACEPORT", L"Microsoft Storage Spaces Controller", L"", L"10.0.19041.3636");
    return {
        {"a gaming laptop",
         {{DiskClass, L"SCSI\\DISK&VEN_NVME&PROD_SAMSUNG_MZVLB1T0\\SERIAL-4711",
           L"SCSI\\DiskNVMe____SAMSUNG_MZVLB1T0EXF7", L"NVMe SAMSUNG MZVLB1T0HBLR-000L2", L"", L"",
           Numbered(7, 0)},
          Controller(L"PCI\\VEN_144D&DEV_A808&SUBSYS_A801144D&REV_00", L"Standard NVM Express Controller",
                     L"PCI\\CC_010802", L"10.0.19041.3636"),
          spaces},
         {Disk(17, "NVMe    ", "SAMSUNG MZVLB1T0", "EXF7201Q", 1024209543168, 0)},
         {L"NVMe SAMSUNG MZVLB1T0HBLR"},
         {},
         {0},
         {{L'C', {DRIVE_FIXED, L"NTFS", 900 * GB, 300 * GB}},
          {L'D', {DRIVE_FIXED, L"NTFS", 50 * GB, 50 * GB}}},
         NoOpticalDrive + LR"(
72500[0]=Yes; 72501[0]=1; 72511[0]=953.9 GB; 72502[0]=SAMSUNG MZVLB1T0HBLR-000L2;
72503[0]=SCSI\DISKNVME____SAMSUNG_MZVLB1T0EXF7; 72504[0]=953.9 GB; 72505[0]=NVMe; 72506[0]=Yes; 72507[0]=No;
72508[0]=EXF7201Q; 72509[0]=0; 72510[0]=Yes; 72600[0]=Yes; 72601[0]=2; 72612[0]=350.0 GB; 72608[0]=0;
72609[0]=0; 72610[0]=0; 72611[0]=0; 72602[0]=C:; 72603[0]=fixed; 72604[0]=NTFS; 72605[0]=900.0 GB;
72606[0]=300.0 GB; 72607[0]=Yes; 72602[1]=D:; 72603[1]=fixed; 72604[1]=NTFS; 72605[1]=50.0 GB;
72606[1]=50.0 GB; 72607[1]=No; 73300[0]=No; 73301[0]=0; 73302[0]=Standard NVM Express Controller;
73303[0]=PCI\VEN_144D&DEV_A808&SUBSYS_A801144D&REV_00; 73304[0]=10.0.19041.3636; 73305[0]=NVMe;
73302[1]=Microsoft Storage Spaces Controller; 73303[1]=ROOT\SPACEPORT; 73304[1]=10.0.19041.3636;
73305[1]=virtual;)"},
        {"an old desktop with a burner and two disks",
         {{DiskClass, L"IDE\\DISKWDC_WD10EZEX-00BN5A0\\5&2&0&1.0.0",
           L"IDE\\DiskWDC_WD10EZEX-00BN5A0_____01.01A01", L"WDC WD10EZEX-00BN5A0 ATA Device", L"", L"",
           Numbered(7, 1)},
          {DiskClass, L"IDE\\DISKST3500418AS\\5&1&0&0.0.0", L"IDE\\DiskST3500418AS_____________CC38____",
           L"ST3500418AS ATA Device", L"", L"", Numbered(7, 0)},
          {OpticalClass, L"IDE\\CDROMHL-DT-ST_DVDRAM\\5&3&0&0.1.0",
           L"IDE\\CdRomHL-DT-ST_DVDRAM_GH24NS50_XP01____", L"HL-DT-ST DVDRAM GH24NS50 ATA Device", L"", L"",
           Burner(0, 3, {0x08, 0x09, 0x0A, 0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x1A, 0x1B, 0x2B})}},
         {Disk(3, nullptr, "ST3500418AS", "CC38", 500107862016, 1),
          Disk(3, nullptr, "WDC WD10EZEX-00BN5A0", "01.01A01", 1000204886016, 1),
          Disk(7, "Generic-", "SD/MMC", "1.00", 0, -1, true)},
         {L"ST3500418AS ATA Device", L"WDC WD10EZEX-00BN5A0 ATA Device", L"Generic- SD/MMC USB Device"},
         {L"HL-DT-ST DVDRAM GH24NS50 ATA Device", L"IDE\\CDROMHL-DT-ST_DVDRAM\\5&3&0&0.1.0", L"E:",
          L"DVD Writer"},
         {1},
         {{L'A', {DRIVE_REMOVABLE, L"", 0, 0, L"\\Device\\Floppy0"}},
          {L'C', {DRIVE_FIXED, L"NTFS", 931 * GB, 12 * GB}},
          {L'D', {DRIVE_FIXED, L"FAT32", 465 * GB, GB}},
          {L'E', {DRIVE_CDROM}}},
         LR"(
72100[0]=Yes; 72101[0]=1; 72102[0]=HL-DT-ST DVDRAM GH24NS50;
72103[0]=IDE\CDROMHL-DT-ST_DVDRAM_GH24NS50_XP01____; 72104[0]=E:; 72105[0]=Yes; 72106[0]=No; 72300[0]=Yes;
72301[0]=Yes; 72302[0]=Yes; 72303[0]=No; 72304[0]=No; 72500[0]=Yes; 72501[0]=2; 72511[0]=1.4 TB;
72502[0]=WDC WD10EZEX-00BN5A0; 72503[0]=IDE\DISKWDC_WD10EZEX-00BN5A0_____01.01A01; 72504[0]=931.5 GB;
72505[0]=ATA; 72506[0]=No; 72507[0]=No; 72508[0]=01.01A01; 72509[0]=1; 72510[0]=Yes; 72502[1]=ST3500418AS;
72503[1]=IDE\DISKST3500418AS_____________CC38____; 72504[1]=465.8 GB; 72505[1]=ATA; 72506[1]=No; 72507[1]=No;
72508[1]=CC38; 72509[1]=0; 72510[1]=No; 72600[0]=Yes; 72601[0]=2; 72612[0]=13.0 GB; 72608[0]=1; 72609[0]=1;
72610[0]=0; 72611[0]=0; 72602[0]=C:; 72603[0]=fixed; 72604[0]=NTFS; 72605[0]=931.0 GB; 72606[0]=12.0 GB;
72607[0]=Yes; 72602[1]=D:; 72603[1]=fixed; 72604[1]=FAT32; 72605[1]=465.0 GB; 72606[1]=1.0 GB; 72607[1]=No;
72602[2]=A:; 72603[2]=removable; 72604[2]=; 72605[2]=; 72606[2]=; 72607[2]=No; 72602[3]=E:; 72603[3]=optical;
72604[3]=; 72605[3]=; 72606[3]=; 72607[3]=No; 73300[0]=No; 73301[0]=0; 73302[0]=; 73303[0]=; 73304[0]=;
73305[0]=;)"},
        {"a virtual machine over a remote session",
         {{DiskClass, L"SCSI\\DISK&VEN_MSFT&PROD_VIRTUAL_DISK\\000000",
           L"SCSI\\DiskMsft____Virtual_Disk____1.0_", L"Microsoft Virtual Disk", L"", L"", Numbered(7, 0)},
          {OpticalClass, L"SCSI\\CDROM&VEN_MSFT&PROD_VIRTUAL_DVD-ROM\\000001",
           L"SCSI\\CdRomMsft____Virtual_DVD-ROM_1.0_", L"Msft Virtual DVD-ROM", L"", L"",
           Burner(0, 10, {0x08, 0x10})},
          Controller(L"VMBUS\\{BA6163D9-04A1-4D29-B605-72E2FFB1DC7F}", L"Microsoft Hyper-V SCSI Controller",
                     L"", L"10.0.17763.2931")},
         {Disk(10, "Msft    ", "Virtual Disk", "1.0", 127 * GB, -1)},
         {L"Microsoft Virtual Disk"},
         {L"Msft Virtual DVD-ROM", L"SCSI\\CDROM&VEN_MSFT&PROD_VIRTUAL_DVD-ROM\\000001", L"D:", L"DVD-ROM"},
         {0},
         {{L'C', {DRIVE_FIXED, L"NTFS", 126 * GB, 100 * GB}},
          {L'D', {DRIVE_CDROM}},
          {L'X', {DRIVE_REMOTE, L"NTFS", GB, GB, L"\\Device\\RdpDr\\;X:1\\TSCLIENT\\SERIAL-4711"}}},
         LR"(
72100[0]=No; 72101[0]=0; 72102[0]=Msft Virtual DVD-ROM; 72103[0]=SCSI\CDROMMSFT____VIRTUAL_DVD-ROM_1.0_;
72104[0]=D:; 72105[0]=No; 72106[0]=Yes; 72300[0]=No; 72301[0]=No; 72302[0]=No; 72303[0]=No; 72304[0]=No;
72500[0]=Yes; 72501[0]=1; 72511[0]=127.0 GB; 72502[0]=Msft Virtual Disk;
72503[0]=SCSI\DISKMSFT____VIRTUAL_DISK____1.0_; 72504[0]=127.0 GB; 72505[0]=SAS; 72506[0]=; 72507[0]=No;
72508[0]=1.0; 72509[0]=0; 72510[0]=Yes; 72600[0]=Yes; 72601[0]=1; 72612[0]=100.0 GB; 72608[0]=0; 72609[0]=1;
72610[0]=1; 72611[0]=0; 72602[0]=C:; 72603[0]=fixed; 72604[0]=NTFS; 72605[0]=126.0 GB; 72606[0]=100.0 GB;
72607[0]=Yes; 72602[1]=D:; 72603[1]=optical; 72604[1]=; 72605[1]=; 72606[1]=; 72607[1]=No; 72602[2]=X:;
72603[2]=remote; 72604[2]=; 72605[2]=; 72606[2]=; 72607[2]=No; 73300[0]=No; 73301[0]=0;
73302[0]=Microsoft Hyper-V SCSI Controller; 73303[0]=VMBUS\{BA6163D9-04A1-4D29-B605-72E2FFB1DC7F};
73304[0]=10.0.17763.2931; 73305[0]=virtual;)"},
        {"a tablet",
         {{DiskClass, L"SD\\DISK&HYNIX&HBG4A2\\4&1&0", L"SD\\VID_90&OID_014A&PID_HBG4a2&REV_0.7",
           L"Hynix HBG4a2", L"", L"", Numbered(7, 0)}},
         {Disk(13, nullptr, "Hynix HBG4a2", "0xA4", 31268536320, -1),
          Disk(12, nullptr, "SU08G", "8.0", 7948206080, -1, true)},
         {L"Hynix HBG4a2", L"SU08G"},
         {},
         {0},
         {{L'C', {DRIVE_FIXED, L"NTFS", 28 * GB, 3 * GB}}, {L'D', {DRIVE_REMOVABLE}}},
         NoOpticalDrive + LR"(
72500[0]=Yes; 72501[0]=1; 72511[0]=29.1 GB; 72502[0]=Hynix HBG4a2;
72503[0]=SD\VID_90&OID_014A&PID_HBG4A2&REV_0.7; 72504[0]=29.1 GB; 72505[0]=MMC; 72506[0]=Yes; 72507[0]=No;
72508[0]=0xA4; 72509[0]=0; 72510[0]=Yes; 72502[1]=SU08G; 72503[1]=; 72504[1]=7.4 GB; 72505[1]=SD; 72506[1]=Yes;
72507[1]=Yes; 72508[1]=8.0; 72509[1]=1; 72510[1]=No; 72600[0]=Yes; 72601[0]=1; 72612[0]=3.0 GB; 72608[0]=1;
72609[0]=0; 72610[0]=0; 72611[0]=0; 72602[0]=C:; 72603[0]=fixed; 72604[0]=NTFS; 72605[0]=28.0 GB;
72606[0]=3.0 GB; 72607[0]=Yes; 72602[1]=D:; 72603[1]=removable; 72604[1]=; 72605[1]=; 72606[1]=; 72607[1]=No;
73300[0]=No; 73301[0]=0; 73302[0]=; 73303[0]=; 73304[0]=; 73305[0]=;)"},
        {"a bare server",
         {{DiskClass, L"SCSI\\DISK&VEN_DELL&PROD_PERC_H730_MINI\\6&1&0&010000",
           L"SCSI\\DiskDELL____PERC_H730_Mini__4.30", L"DELL PERC H730 Mini SCSI Disk Device", L"", L"",
           Numbered(7, 1)},
          {DiskClass, L"SCSI\\DISK&VEN_DELL&PROD_PERC_H730_MINI\\6&1&0&010100",
           L"SCSI\\DiskDELL____PERC_H730_Mini__4.30", L"DELL PERC H730 Mini SCSI Disk Device", L"", L"",
           Numbered(7, 0)},
          spaces,
          Controller(L"PCI\\VEN_1000&DEV_0097&SUBSYS_1F451028&REV_02", L"LSI Adapter, SAS3 3008",
                     L"PCI\\CC_0107", L"2.51.25.1"),
          Controller(L"PCI\\VEN_1000&DEV_005D&SUBSYS_1F491028&REV_02", L"PERC H730 Mini", L"PCI\\CC_010400",
                     L"6.604.6.0")},
         {Disk(8, "DELL    ", "PERC H730 Mini", "4.30", 3999688294400, -1),
          Disk(8, "DELL    ", "PERC H730 Mini", "4.30", 3999688294400, -1)},
         {L"DELL PERC H730 Mini SCSI Disk Device", L"DELL PERC H730 Mini SCSI Disk Device"},
         {},
         {0, 1},
         {{L'C', {DRIVE_FIXED, L"ReFS", 7449 * GB, 5000 * GB}}},
         NoOpticalDrive + LR"(
72500[0]=Yes; 72501[0]=2; 72511[0]=7.3 TB; 72502[0]=DELL PERC H730 Mini;
72503[0]=SCSI\DISKDELL____PERC_H730_MINI__4.30; 72504[0]=3.6 TB; 72505[0]=RAID; 72506[0]=; 72507[0]=No;
72508[0]=4.30; 72509[0]=0; 72510[0]=Yes; 72502[1]=DELL PERC H730 Mini;
72503[1]=SCSI\DISKDELL____PERC_H730_MINI__4.30; 72504[1]=3.6 TB; 72505[1]=RAID; 72506[1]=; 72507[1]=No;
72508[1]=4.30; 72509[1]=1; 72510[1]=Yes; 72600[0]=Yes; 72601[0]=1; 72612[0]=4.9 TB; 72608[0]=0; 72609[0]=0;
72610[0]=0; 72611[0]=0; 72602[0]=C:; 72603[0]=fixed; 72604[0]=ReFS; 72605[0]=7.3 TB; 72606[0]=4.9 TB;
72607[0]=Yes; 73300[0]=Yes; 73301[0]=2; 73302[0]=PERC H730 Mini;
73303[0]=PCI\VEN_1000&DEV_005D&SUBSYS_1F491028&REV_02; 73304[0]=6.604.6.0; 73305[0]=RAID;
73302[1]=LSI Adapter, SAS3 3008; 73303[1]=PCI\VEN_1000&DEV_0097&SUBSYS_1F451028&REV_02; 73304[1]=2.51.25.1;
73305[1]=SAS; 73302[2]=Microsoft Storage Spaces Controller; 73303[2]=ROOT\SPACEPORT; 73304[2]=10.0.19041.3636;
73305[2]=virtual;)"},
    };
}

}  // namespace kel::test
