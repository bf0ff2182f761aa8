#pragma once

namespace kel::test {

/// Disks as drivers and WMI describe them, a line each, with semicolons between: what it is; the bus; vendor;
/// product; what it says: d the disk can leave, m its medium, f seeks are free, c they are costly, F it is a
/// floppy; bytes; WMI's model, "=" for the product; and what is stored: model ("=" for WMI's, up to a "!"
/// that is not in it), size, bus, solid state, removable.
inline constexpr const wchar_t* RealDisks =
    LR"(
SATA SSD;11;;Samsung SSD 860 EVO 500GB;f;500107862016;=;=|465.8 GB|SATA|Yes|No
SATA disk;11;;ST1000DM010-2EP102;c;1000204886016;=;=|931.5 GB|SATA|No|No
the same model again;11;;ST1000DM010-2EP102;c;1000204886016;=;=|931.5 GB|SATA|No|No
SATA, by an inquiry;11;ATA;WDC WD40EZRZ-00G;c;4000787030016;WDC WD40EZRZ-00GXCB0! SCSI Disk Device;=|3.6 TB|SATA|No|No
SATA, 10 TB;11;;WDC WD100EMAZ-00WJTA0;c;10000831348736;=;=|9.1 TB|SATA|No|No
SATA, 18 TB;11;;TOSHIBA MG09ACA18TE;c;18000207937536;=;=|16.4 TB|SATA|No|No
SATA, blanks inside;11;;INTEL  SSDSC2BB480G4    ;f;480103981056;INTEL SSDSC2BB480G4;=|447.1 GB|SATA|Yes|No
SATA, in a bay that takes a change;11;;Crucial_CT1050MX300SSD1;df;1050214588416;=;=|978.1 GB|SATA|Yes|No
old IDE;3;;ST3160815A;;160041885696;ST3160815A! ATA Device;=|149.1 GB|ATA||No
old IDE, a maker's blanks;3;;Maxtor 6Y080L0      ;c;81964302336;Maxtor 6Y080L0;=|76.3 GB|ATA|No|No
old notebook;3;;HTS541680J9SA00;;80026361856;HTS541680J9SA00! ATA Device;=|74.5 GB|ATA||No
CompactFlash;3;;SanDisk SDCFX3-032G;f;32017047552;SanDisk SDCFX3-032G! ATA Device;=|29.8 GB|ATA|Yes|No
NVMe, cut;17;NVMe;SAMSUNG MZVLB512;f;512110190592;NVMe SAMSUNG MZVLB512HAJQ;SAMSUNG MZVLB512HAJQ|476.9 GB|NVMe|Yes|No
NVMe, in full;17;;Samsung SSD 970 EVO Plus 1TB;f;1000204886016;=;=|931.5 GB|NVMe|Yes|No
NVMe that says nothing of seeks;17;;WDC PC SN730 SDBPNTY-512G-1101;;512110190592;=;=|476.9 GB|NVMe|Yes|No
NVMe, 4 TB;17;;WD_BLACK SN850X 4000GB;f;4000787030016;=;=|3.6 TB|NVMe|Yes|No
NVMe, Optane;17;NVMe;INTEL SSDPE21D28;f;280065171456;NVMe INTEL SSDPE21D280GA;INTEL SSDPE21D280GA|260.8 GB|NVMe|Yes|No
NVMe, small;17;;KBG40ZNS256G NVMe KIOXIA 256GB;f;256060514304;=;=|238.5 GB|NVMe|Yes|No
NVMe behind RAID;8;NVMe;SAMSUNG MZVLB1T0;;1024209543168;NVMe SAMSUNG MZVLB1T0HBLR;SAMSUNG MZVLB1T0HBLR|953.9 GB|RAID||No
NVMe behind RAID, told;8;NVMe;PM981a NVMe Sams;f;512110190592;NVMe PM981a NVMe Samsung;PM981a NVMe Samsung|476.9 GB|RAID|Yes|No
SATA behind RAID;8;;ST2000DM001-1CH164;c;2000398934016;=;=|1.8 TB|RAID|No|No
RAID volume;8;Intel;Raid 1 Volume;;1000202043392;Intel Raid 1 Volume;=|931.5 GB|RAID||No
RAID controller;8;DELL;PERC H730 Mini;;3999688294400;DELL PERC H730 Mini! SCSI Disk Device;=|3.6 TB|RAID||No
SAS;10;SEAGATE;ST600MM0006;c;600127266816;SEAGATE ST600MM0006! SCSI Disk Device;=|558.9 GB|SAS|No|No
SAS SSD;10;HGST;HUSMM1640ASS204;f;400088457216;HGST HUSMM1640ASS204! SCSI Disk Device;=|372.6 GB|SAS|Yes|No
SCSI;1;MAXTOR;ATLAS10K4_36SCA;c;36703918080;MAXTOR ATLAS10K4_36SCA! SCSI Disk Device;=|34.2 GB|SCSI|No|No
Fibre Channel;6;NETAPP;LUN C-Mode;;2199023255552;NETAPP LUN C-Mode! Multi-Path Disk Device;=|2.0 TB|Fibre Channel||No
iSCSI;9;SYNOLOGY;iSCSI Storage;;107374182400;SYNOLOGY iSCSI Storage! SCSI Disk Device;=|100.0 GB|iSCSI||No
USB bridge;7;WD;My Passport 0820;d;1000170586112;WD My Passport 0820! USB Device;=|931.5 GB|USB||Yes
USB bridge, cut;7;Seagate;Expansion Desk;d;4000787029504;Seagate Expansion Desktop! USB Device;=|3.6 TB|USB||Yes
USB, told;7;Samsung;Portable SSD T5;df;500107862016;Samsung Portable SSD T5! SCSI Disk Device;=|465.8 GB|USB|Yes|Yes
USB bridge that stays;7;JMicron;Generic;;250059350016;JMicron Generic! SCSI Disk Device;=|232.9 GB|USB||No
USB stick;7;SanDisk;Ultra;m;30752636928;SanDisk Ultra! USB Device;=|28.6 GB|USB||Yes
a maker twice;7;Kingston;Kingston DataTra;m;15502147584;Kingston DataTraveler 3.0! USB Device;=|14.4 GB|USB||Yes
USB stick without a maker;7;;USB DISK 2.0;m;8053063680;USB DISK 2.0! USB Device;=|7.5 GB|USB||Yes
FireWire;4;LaCie;Rugged FW/USB;d;500107862016;LaCie Rugged FW/USB! IEEE 1394 SBP2 Device;=|465.8 GB|FireWire||Yes
SD card in its own slot;12;;SU08G;m;7948206080;=;=|7.4 GB|SD|Yes|Yes
SD card in a USB reader;7;Generic-;SD/MMC;m;31914983424;Generic- SD/MMC USB Device;SD/MMC|29.7 GB|USB||Yes
SD reader, empty;7;Generic-;Compact Flash;m;0;Generic- Compact Flash USB Device;left out
tablet's eMMC;13;;Hynix HBG4a2;;31268536320;=;=|29.1 GB|MMC|Yes|No
phone's UFS;19;SAMSUNG;KLUDG8J1CB-B0B1;;127930466304;SAMSUNG KLUDG8J1CB-B0B1;=|119.1 GB|UFS|Yes|No
virtual machine's SATA;11;;VBOX HARDDISK;;53687091200;=;=|50.0 GB|SATA||No
virtual SCSI;1;QEMU;QEMU HARDDISK;;42949672960;QEMU QEMU HARDDISK SCSI Disk Device;QEMU HARDDISK|40.0 GB|SCSI||No
virtual machine's SAS;10;Msft;Virtual Disk;;136365211648;Microsoft Virtual Disk;Msft Virtual Disk|127.0 GB|SAS||No
mounted image;15;Msft;Virtual Disk;;10737418240;Microsoft Virtual Disk;left out
storage space;16;Msft;Storage Space;;2199023255552;Microsoft Storage Space Device;left out
virtual bus;14;LSI;MegaSR;;1000202043392;LSI MegaSR;left out
USB floppy;7;TEAC;USB UF000x;mF;1474560;TEAC USB UF000x USB Device;left out
a maker's filler;7;Default string;To Be Filled By O.E.M.;d;1000204886016;(Standard disk drives);|931.5 GB|USB||Yes
an unknown bus;99;ACME;Disk;;1000204886016;ACME Disk;=|931.5 GB|||No)";

}  // namespace kel::test
