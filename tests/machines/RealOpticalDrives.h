#pragma once

namespace kel::test {

/// A drive's name or media type, and what it tells: C writes CDs, d reads and D writes DVDs, b reads and B
/// writes Blu-ray. What it does not tell is not there.
struct RealOpticalDrive {
    const wchar_t* name;
    const wchar_t* abilities;
};

inline const RealOpticalDrive RealOpticalDrives[] = {
    {L"HL-DT-ST DVDRAM GH24NSD1", L"CdD"},
    {L"HL-DT-ST DVD+-RW GU90N", L"CdD"},
    {L"HL-DT-ST DVD-ROM GDR8163B", L"d"},
    {L"HL-DT-ST CD-ROM GCR-8523B", L""},
    {L"HL-DT-ST CD-RW GCE-8525B", L"C"},
    {L"HL-DT-ST RW/DVD GCC-4244N", L"Cd"},
    {L"HL-DT-ST BD-RE WH16NS40", L"CdDbB"},
    {L"HL-DT-ST BDDVDRW CH12NS40", L"CdDb"},
    {L"HLDS DVDRW GUD1N", L"CdD"},
    {L"TSSTcorp CDDVDW SH-224DB", L"CdD"},
    {L"TSSTcorp CD/DVDW TS-L632D", L"CdD"},
    {L"TSSTcorp DVD-ROM SH-118AB", L"d"},
    {L"TSSTcorp BDDVDW SH-B123L", L"CdDb"},
    {L"PLDS DVD+-RW DU-8A5LH", L"CdD"},
    {L"MATSHITA DVD-RAM UJ8E2 S", L"CdD"},
    {L"MATSHITA BD-MLT UJ260AF", L"CdDbB"},
    {L"MATSHITA BD-CMB UJ160", L"CdDb"},
    {L"MATSHITA UJDA770 DVD/CDRW", L"Cd"},
    {L"PIONEER DVD-RW DVR-221L", L"CdD"},
    {L"PIONEER DVD-ROM DVD-106", L"d"},
    {L"PIONEER BD-RW BDR-209D", L"CdDbB"},
    {L"PIONEER BD-ROM BDC-207D", L"CdDb"},
    {L"ASUS DRW-24D5MT", L"CdD"},
    {L"ASUS BW-16D1HT", L"CdDbB"},
    {L"ASUS BC-12D2HT", L"CdDb"},
    {L"Slimtype DVD A DS8A8SH", L"CdD"},
    {L"Slimtype BD E DS4E1S", L"CdDb"},
    {L"Slimtype DVDRW SSM-8515S", L"CdD"},
    {L"ATAPI iHAS124 B", L"CdD"},
    {L"ATAPI iHBS112 2", L"CdDbB"},
    {L"ATAPI iHES208 2", L"CdDb"},
    {L"ATAPI iHOS104", L"db"},
    {L"ATAPI iHDS118", L"d"},
    {L"LITE-ON DVDRW SOHW-1633S", L"CdD"},
    {L"LITE-ON DVD SOHD-16P9S", L"d"},
    {L"LITE-ON LTR-52327S", L""},
    {L"SONY DVD RW DRU-810A", L"CdD"},
    {L"SONY CD-RW CRX230E", L"C"},
    {L"_NEC DVD_RW ND-3540A", L"CdD"},
    {L"Optiarc DVD RW AD-7260S", L"CdD"},
    {L"TOSHIBA DVD-ROM SD-M1912", L"d"},
    {L"TOSHIBA CD/DVDW SDR5372V", L"CdD"},
    {L"TOSHIBA CDRW/DVD SD-R2512", L"Cd"},
    {L"SAMSUNG CD-R/RW SW-252F", L"C"},
    {L"SAMSUNG DVD-ROM SD-616T", L"d"},
    {L"SAMSUNG CD-ROM SC-152L", L""},
    {L"TEAC CD-W552E", L"C"},
    {L"PLEXTOR DVDR PX-716A", L"CdD"},
    {L"PLEXTOR CD-R PX-W4824A", L"C"},
    {L"PLEXTOR BD-R PX-LB950SA", L"CdDbB"},
    {L"PHILIPS DVDR1660P1", L"CdD"},
    {L"BENQ DVD DD DW1640", L"d"},
    {L"hp DVD A DS8A5LH", L"CdD"},
    {L"hp BDDVDRW CT10L", L"CdDb"},
    {L"QSI CD-RW/DVD-ROM SBW-241", L"Cd"},
    {L"Msft Virtual DVD-ROM", L"d"},
    {L"VBOX CD-ROM", L""},
    {L"NECVMWar VMware SATA CD01", L""},
    {L"DVD Writer", L"CdD"},
    {L"CD Writer", L"C"},
    {L"DVD-ROM", L"d"},
    {L"CD-ROM", L""},
    {L"Unknown", L""},
    {L"", L""},
};

}  // namespace kel::test
