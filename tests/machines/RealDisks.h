#pragma once

#include <cstdint>

namespace kel::test {

/// What a disk says of its seeks.
enum Seeks { Silent = -1, Free = 0, Costly = 1 };
/// What it says of removal: nothing, its medium leaves, or the disk does.
enum Removal { Stays, MediumLeaves, DiskLeaves };

/// A disk as drivers and WMI describe it, and what is stored: model, size, bus, solid state, removable,
/// firmware. Null: it is left out.
struct RealDisk {
    const char* kind;
    int bus;
    const char* vendor;
    const char* product;
    const char* revision;
    Removal removal;
    Seeks seeks;
    std::uint64_t bytes;
    const wchar_t* wmi;
    const wchar_t* expected;
};

inline const RealDisk RealDisks[] = {
    {"SATA SSD", 11, nullptr, "Samsung SSD 860 EVO 500GB", "RVT04B6Q", Stays, Free, 500107862016,
     L"Samsung SSD 860 EVO 500GB", L"Samsung SSD 860 EVO 500GB|465.8 GB|SATA|Yes|No|RVT04B6Q"},
    {"SATA disk", 11, nullptr, "ST1000DM010-2EP102", "CC43", Stays, Costly, 1000204886016,
     L"ST1000DM010-2EP102", L"ST1000DM010-2EP102|931.5 GB|SATA|No|No|CC43"},
    {"the same model again", 11, nullptr, "ST1000DM010-2EP102", "CC43", Stays, Costly, 1000204886016,
     L"ST1000DM010-2EP102", L"ST1000DM010-2EP102|931.5 GB|SATA|No|No|CC43"},
    {"SATA, by an inquiry", 11, "ATA     ", "WDC WD40EZRZ-00G", "80.00A80", Stays, Costly, 4000787030016,
     L"WDC WD40EZRZ-00GXCB0 SCSI Disk Device", L"WDC WD40EZRZ-00GXCB0|3.6 TB|SATA|No|No|80.00A80"},
    {"SATA, 10 TB", 11, nullptr, "WDC WD100EMAZ-00WJTA0", "83.H0A83", Stays, Costly, 10000831348736,
     L"WDC WD100EMAZ-00WJTA0", L"WDC WD100EMAZ-00WJTA0|9.1 TB|SATA|No|No|83.H0A83"},
    {"SATA, 18 TB", 11, nullptr, "TOSHIBA MG09ACA18TE", "0104", Stays, Costly, 18000207937536,
     L"TOSHIBA MG09ACA18TE", L"TOSHIBA MG09ACA18TE|16.4 TB|SATA|No|No|0104"},
    {"SATA, blanks inside", 11, nullptr, "INTEL  SSDSC2BB480G4    ", "D201", Stays, Free, 480103981056,
     L"INTEL SSDSC2BB480G4", L"INTEL SSDSC2BB480G4|447.1 GB|SATA|Yes|No|D201"},
    {"SATA, in a bay that takes a change", 11, nullptr, "Crucial_CT1050MX300SSD1", "M0CR050", DiskLeaves,
     Free, 1050214588416, L"Crucial_CT1050MX300SSD1",
     L"Crucial_CT1050MX300SSD1|978.1 GB|SATA|Yes|No|M0CR050"},
    {"old IDE", 3, nullptr, "ST3160815A", "3.AAD", Stays, Silent, 160041885696, L"ST3160815A ATA Device",
     L"ST3160815A|149.1 GB|ATA||No|3.AAD"},
    {"old IDE, a maker's blanks", 3, nullptr, "Maxtor 6Y080L0      ", "YAR41BW0", Stays, Costly, 81964302336,
     L"Maxtor 6Y080L0", L"Maxtor 6Y080L0|76.3 GB|ATA|No|No|YAR41BW0"},
    {"old notebook", 3, nullptr, "HTS541680J9SA00", "SB2OC70P", Stays, Silent, 80026361856,
     L"HTS541680J9SA00 ATA Device", L"HTS541680J9SA00|74.5 GB|ATA||No|SB2OC70P"},
    {"CompactFlash", 3, nullptr, "SanDisk SDCFX3-032G", "HDX 5.00", Stays, Free, 32017047552,
     L"SanDisk SDCFX3-032G ATA Device", L"SanDisk SDCFX3-032G|29.8 GB|ATA|Yes|No|HDX 5.00"},
    {"NVMe, cut", 17, "NVMe    ", "SAMSUNG MZVLB512", "EXA7301Q", Stays, Free, 512110190592,
     L"NVMe SAMSUNG MZVLB512HAJQ", L"SAMSUNG MZVLB512HAJQ|476.9 GB|NVMe|Yes|No|EXA7301Q"},
    {"NVMe, in full", 17, nullptr, "Samsung SSD 970 EVO Plus 1TB", "2B2QEXM7", Stays, Free, 1000204886016,
     L"Samsung SSD 970 EVO Plus 1TB", L"Samsung SSD 970 EVO Plus 1TB|931.5 GB|NVMe|Yes|No|2B2QEXM7"},
    {"NVMe that says nothing of seeks", 17, nullptr, "WDC PC SN730 SDBPNTY-512G-1101", "11170101", Stays,
     Silent, 512110190592, L"WDC PC SN730 SDBPNTY-512G-1101",
     L"WDC PC SN730 SDBPNTY-512G-1101|476.9 GB|NVMe|Yes|No|11170101"},
    {"NVMe, 4 TB", 17, nullptr, "WD_BLACK SN850X 4000GB", "624361WD", Stays, Free, 4000787030016,
     L"WD_BLACK SN850X 4000GB", L"WD_BLACK SN850X 4000GB|3.6 TB|NVMe|Yes|No|624361WD"},
    {"NVMe, Optane", 17, "NVMe    ", "INTEL SSDPE21D28", "E2010325", Stays, Free, 280065171456,
     L"NVMe INTEL SSDPE21D280GA", L"INTEL SSDPE21D280GA|260.8 GB|NVMe|Yes|No|E2010325"},
    {"NVMe, small", 17, nullptr, "KBG40ZNS256G NVMe KIOXIA 256GB", "10410104", Stays, Free, 256060514304,
     L"KBG40ZNS256G NVMe KIOXIA 256GB", L"KBG40ZNS256G NVMe KIOXIA 256GB|238.5 GB|NVMe|Yes|No|10410104"},
    {"NVMe behind RAID", 8, "NVMe    ", "SAMSUNG MZVLB1T0", "EXF7201Q", Stays, Silent, 1024209543168,
     L"NVMe SAMSUNG MZVLB1T0HBLR", L"SAMSUNG MZVLB1T0HBLR|953.9 GB|RAID||No|EXF7201Q"},
    {"NVMe behind RAID that tells", 8, "NVMe    ", "PM981a NVMe Sams", "15302129", Stays, Free, 512110190592,
     L"NVMe PM981a NVMe Samsung SCSI Disk Device", L"PM981a NVMe Samsung|476.9 GB|RAID|Yes|No|15302129"},
    {"SATA behind RAID", 8, nullptr, "ST2000DM001-1CH164", "CC27", Stays, Costly, 2000398934016,
     L"ST2000DM001-1CH164", L"ST2000DM001-1CH164|1.8 TB|RAID|No|No|CC27"},
    {"RAID volume", 8, "Intel   ", "Raid 1 Volume", "1.0.", Stays, Silent, 1000202043392,
     L"Intel Raid 1 Volume", L"Intel Raid 1 Volume|931.5 GB|RAID||No|1.0."},
    {"RAID controller", 8, "DELL    ", "PERC H730 Mini", "4.30", Stays, Silent, 3999688294400,
     L"DELL PERC H730 Mini SCSI Disk Device", L"DELL PERC H730 Mini|3.6 TB|RAID||No|4.30"},
    {"SAS", 10, "SEAGATE ", "ST600MM0006", "LS0B", Stays, Costly, 600127266816,
     L"SEAGATE ST600MM0006 SCSI Disk Device", L"SEAGATE ST600MM0006|558.9 GB|SAS|No|No|LS0B"},
    {"SAS SSD", 10, "HGST    ", "HUSMM1640ASS204", "C118", Stays, Free, 400088457216,
     L"HGST HUSMM1640ASS204 SCSI Disk Device", L"HGST HUSMM1640ASS204|372.6 GB|SAS|Yes|No|C118"},
    {"SCSI", 1, "MAXTOR  ", "ATLAS10K4_36SCA", "DFM0", Stays, Costly, 36703918080,
     L"MAXTOR ATLAS10K4_36SCA SCSI Disk Device", L"MAXTOR ATLAS10K4_36SCA|34.2 GB|SCSI|No|No|DFM0"},
    {"Fibre Channel", 6, "NETAPP  ", "LUN C-Mode", "9700", Stays, Silent, 2199023255552,
     L"NETAPP LUN C-Mode Multi-Path Disk Device", L"NETAPP LUN C-Mode|2.0 TB|Fibre Channel||No|9700"},
    {"iSCSI", 9, "SYNOLOGY", "iSCSI Storage", "4.0", Stays, Silent, 107374182400,
     L"SYNOLOGY iSCSI Storage SCSI Disk Device", L"SYNOLOGY iSCSI Storage|100.0 GB|iSCSI||No|4.0"},
    {"USB bridge", 7, "WD      ", "My Passport 0820", "1007", DiskLeaves, Silent, 1000170586112,
     L"WD My Passport 0820 USB Device", L"WD My Passport 0820|931.5 GB|USB||Yes|1007"},
    {"USB bridge, cut", 7, "Seagate ", "Expansion Desk", "0739", DiskLeaves, Silent, 4000787029504,
     L"Seagate Expansion Desktop USB Device", L"Seagate Expansion Desktop|3.6 TB|USB||Yes|0739"},
    {"USB bridge that tells", 7, "Samsung ", "Portable SSD T5", "0", DiskLeaves, Free, 500107862016,
     L"Samsung Portable SSD T5 SCSI Disk Device", L"Samsung Portable SSD T5|465.8 GB|USB|Yes|Yes|0"},
    {"USB bridge that stays", 7, "JMicron ", "Generic", "0503", Stays, Silent, 250059350016,
     L"JMicron Generic SCSI Disk Device", L"JMicron Generic|232.9 GB|USB||No|0503"},
    {"USB stick", 7, "SanDisk ", "Ultra", "1.00", MediumLeaves, Silent, 30752636928,
     L"SanDisk Ultra USB Device", L"SanDisk Ultra|28.6 GB|USB||Yes|1.00"},
    {"USB stick, a maker twice", 7, "Kingston", "Kingston DataTra", "PMAP", MediumLeaves, Silent, 15502147584,
     L"Kingston DataTraveler 3.0 USB Device", L"Kingston DataTraveler 3.0|14.4 GB|USB||Yes|PMAP"},
    {"USB stick without a maker", 7, "        ", "USB DISK 2.0", "PMAP", MediumLeaves, Silent, 8053063680,
     L"USB DISK 2.0 USB Device", L"USB DISK 2.0|7.5 GB|USB||Yes|PMAP"},
    {"FireWire", 4, "LaCie   ", "Rugged FW/USB", "AA00", DiskLeaves, Silent, 500107862016,
     L"LaCie Rugged FW/USB IEEE 1394 SBP2 Device", L"LaCie Rugged FW/USB|465.8 GB|FireWire||Yes|AA00"},
    {"SD card in its own slot", 12, nullptr, "SU08G", "8.0", MediumLeaves, Silent, 7948206080, L"SU08G",
     L"SU08G|7.4 GB|SD|Yes|Yes|8.0"},
    {"SD card in a USB reader", 7, "Generic-", "SD/MMC", "1.00", MediumLeaves, Silent, 31914983424,
     L"Generic- SD/MMC USB Device", L"SD/MMC|29.7 GB|USB||Yes|1.00"},
    {"SD reader, empty", 7, "Generic-", "Compact Flash", "1.01", MediumLeaves, Silent, 0,
     L"Generic- Compact Flash USB Device", nullptr},
    {"tablet's eMMC", 13, nullptr, "Hynix HBG4a2", "0xA4", Stays, Silent, 31268536320, L"Hynix HBG4a2",
     L"Hynix HBG4a2|29.1 GB|MMC|Yes|No|0xA4"},
    {"phone's UFS", 19, "SAMSUNG ", "KLUDG8J1CB-B0B1", "0A00", Stays, Silent, 127930466304,
     L"SAMSUNG KLUDG8J1CB-B0B1", L"SAMSUNG KLUDG8J1CB-B0B1|119.1 GB|UFS|Yes|No|0A00"},
    {"virtual machine's SATA", 11, nullptr, "VBOX HARDDISK", "1.0", Stays, Silent, 53687091200,
     L"VBOX HARDDISK", L"VBOX HARDDISK|50.0 GB|SATA||No|1.0"},
    {"virtual machine's SCSI", 1, "QEMU    ", "QEMU HARDDISK", "2.5+", Stays, Silent, 42949672960,
     L"QEMU QEMU HARDDISK SCSI Disk Device", L"QEMU HARDDISK|40.0 GB|SCSI||No|2.5+"},
    {"virtual machine's SAS", 10, "Msft    ", "Virtual Disk", "1.0", Stays, Silent, 136365211648,
     L"Microsoft Virtual Disk", L"Msft Virtual Disk|127.0 GB|SAS||No|1.0"},
    {"mounted image", 15, "Msft    ", "Virtual Disk", "1.0", Stays, Silent, 10737418240,
     L"Microsoft Virtual Disk", nullptr},
    {"storage space", 16, "Msft    ", "Storage Space", "0.1", Stays, Silent, 2199023255552,
     L"Microsoft Storage Space Device", nullptr},
    {"virtual bus", 14, "LSI     ", "MegaSR", "1.0", Stays, Silent, 1000202043392, L"LSI MegaSR", nullptr},
    {"USB floppy", 7, "TEAC    ", "USB UF000x", "0.00", MediumLeaves, Silent, 1474560,
     L"TEAC USB UF000x USB Device", nullptr},
    {"a maker's filler", 7, "Default string", "To Be Filled By O.E.M.", "", DiskLeaves, Silent, 1000204886016,
     L"(Standard disk drives)", L"|931.5 GB|USB||Yes|"},
    {"an unknown bus", 99, "ACME    ", "Disk", "1", Stays, Silent, 1000204886016, L"ACME Disk",
     L"ACME Disk|931.5 GB|||No|1"},
};

}  // namespace kel::test
