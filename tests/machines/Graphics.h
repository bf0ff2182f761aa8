// Machines by their graphics adapters, and what is stored of them.
#pragma once

#include <functional>

#include "support/FakeGraphics.h"

namespace kel::test {

struct GraphicsMachine {
    /// What the Setup API lists; the instance part of the id is the machine's own.
    struct Device {
        const wchar_t* name;
        const wchar_t* instanceId;
        const wchar_t* driverVersion;
        const wchar_t* matchingId = L"";
    };
    /// What the registry's cache notes of an adapter, by its place; its kind can be another by now.
    struct Note {
        std::uint64_t place;
        DWORD vendor, device, level;
    };

    const char* what;
    const wchar_t* wanted;
    std::vector<Card> cards;
    std::vector<Device> devices;
    std::vector<Note> notes;
    std::function<void(FakeGraphics&)> change;
    const wchar_t* calls;              ///< that load a driver
    std::vector<std::wstring> stored;  ///< of each adapter, and of DirectX
};

constexpr const wchar_t* Levels = L"72008|72203|72204";
constexpr Card BasicRender = {L"Microsoft Basic Render Driver", 0x1414, 0x8C, 0, 0, 8192};
constexpr Card Geforce4090 = {
    L"NVIDIA GeForce RTX 4090", 0x10DE, 0x2684, 0x88EF1043, 24576, 16384, 0, 0xC100, 0xC200, 0x66};
constexpr Card Geforce3060 = {
    L"NVIDIA GeForce RTX 3060 Laptop GPU", 0x10DE, 0x2520, 0x12FC1043, 6144, 8192, 0, 0xC100, 0xC200, 0x66};
constexpr Card Iris = {
    L"Intel(R) Iris(R) Xe Graphics", 0x8086, 0x9A49, 0x12FC1043, 128, 8192, 0, 0xC100, 0xC100, 0x66, 3000};
constexpr Card Radeon = {
    L"Radeon RX 580 Series",          0x1002, 0x67DF, 0xE3531DA2, 4095, 8192, 0, 0xC000, 0xC000, 0x60, 2700,
    (31ULL << 48) + (21ULL << 16) + 7};
constexpr Card VMware = {L"VMware SVGA 3D", 0x15AD, 0x405, 0x40515AD, 8192, 1024, 0, 0xB100, 0, 0, 1200};

inline const GraphicsMachine GraphicsMachines[] = {
    {"no adapter",
     Levels,
     {},
     {},
     {},
     {},
     L"9:1 DxDiag:1 ",
     {L"No|0||||||||||||||", L"No|12.0||||No|Yes|Yes|Yes|Yes"}},
    {"one card",
     Levels,
     {Geforce4090, BasicRender},
     {{L"RTX", L"PCI\\VEN_10DE&DEV_2684&SUBSYS_88EF1043&REV_A1\\4&ANNA&0", L"32.0.15.7628"}},
     {},
     {},
     L"11:1 12:3 ",
     {L"Yes|1|NVIDIA GeForce RTX 4090|PCI\\VEN_10DE&DEV_2684&SUBSYS_88EF1043&REV_A1|24.0 GB|16.0 GB|"
      L"32.0.15.7628|576.28|12.2|No|Yes|No|No|No||",
      L"Yes|12.0|12.2|6.6|3.1|No|Yes|Yes|Yes|Yes"}},
    {"one card, of which nothing is wanted that loads a driver",
     L"72000|72002",
     {Geforce4090},
     {},
     {},
     {},
     L"",
     {L"Yes|1|NVIDIA GeForce RTX 4090|PCI\\VEN_10DE&DEV_2684&SUBSYS_88EF1043&REV_A1|24.0 GB|16.0 GB||||No|"
      L"Yes|No|No|No||",
      L"Yes|12.0|||3.1|No|Yes|Yes|Yes|Yes"}},
    {"a laptop with two",
     Levels,
     {Iris, Geforce3060, BasicRender},
     {{L"Iris", L"PCI\\VEN_8086&DEV_9A49&SUBSYS_12FC1043&REV_A1\\3&ANNA&0&10", L"31.0.101.5186"},
      {L"RTX", L"PCI\\VEN_10DE&DEV_2520&SUBSYS_12FC1043&REV_A1\\4&ANNA&0&0008", L"31.0.15.142"}},
     {},
     {},
     L"11:2 12:5 ",
     {L"Yes|2|NVIDIA GeForce RTX 3060 Laptop GPU|PCI\\VEN_10DE&DEV_2520&SUBSYS_12FC1043&REV_A1|6.0 GB|"
      L"8.0 GB|31.0.15.142|501.42|12.2|No|Yes|No|No|No||",
      L"Intel(R) Iris(R) Xe Graphics|PCI\\VEN_8086&DEV_9A49&SUBSYS_12FC1043&REV_A1|128.0 MB|8.0 GB|"
      L"31.0.101.5186||12.1|Yes|No|No|Yes|No||",
      L"Yes|12.0|12.2|6.6|3.1|No|Yes|Yes|Yes|Yes"}},
    {"two equal cards",
     L"",
     {Radeon, Radeon},
     {{L"First", L"PCI\\VEN_1002&DEV_67DF&SUBSYS_E3531DA2&REV_A1\\1", L"31.0.1"},
      {L"Second", L"PCI\\VEN_1002&DEV_67DF&SUBSYS_E3531DA2&REV_A1\\2", L"31.0.2"}},
     {},
     {},
     L"",
     {L"Yes|2|Radeon RX 580 Series|PCI\\VEN_1002&DEV_67DF&SUBSYS_E3531DA2&REV_A1|4.0 GB|8.0 GB|31.0.1|||No|"
      L"No|Yes|No|No||",
      L"Radeon RX 580 Series|PCI\\VEN_1002&DEV_67DF&SUBSYS_E3531DA2&REV_A1|4.0 GB|8.0 GB|31.0.2|||No|No|Yes|"
      L"No|No||",
      L"Yes|12.0|||2.7|No|Yes|Yes|Yes|Yes"}},
    {"three, ranked by memory and level, and none by its name",
     L"72008",
     {Iris, {L"AMD Ultimate 9999", 0x1002, 0x1, 0, 6144, 8192}, Geforce3060},
     {},
     {{1, 0x8086, 0x9A49, 0xC100}, {2, 0x1002, 0x1, 0xC000}, {3, 0x10DE, 0x2520, 0xC100}},
     {},
     L"",
     {L"Yes|3|NVIDIA GeForce RTX 3060 Laptop GPU|PCI\\VEN_10DE&DEV_2520&SUBSYS_12FC1043&REV_A1|6.0 GB|"
      L"8.0 GB|9.8.7.6||12.1|No|Yes|No|No|No||",
      L"AMD Ultimate 9999|PCI\\VEN_1002&DEV_0001&REV_A1|6.0 GB|8.0 GB|9.8.7.6||12.0|No|No|Yes|No|No||",
      L"Intel(R) Iris(R) Xe Graphics|PCI\\VEN_8086&DEV_9A49&SUBSYS_12FC1043&REV_A1|128.0 MB|8.0 GB|"
      L"9.8.7.6||12.1|Yes|No|No|Yes|No||",
      L"Yes|12.0|12.1||3.1|No|Yes|Yes|Yes|Yes"}},
    {"a card without a driver",
     L"72008|72014",
     {BasicRender},
     {{L"Microsoft Basic Display Adapter", L"PCI\\VEN_10DE&DEV_1C03&SUBSYS_11D710DE&REV_A1\\1",
       L"10.0.19041.1", L"PCI\\CC_0300"}},
     {},
     [](FakeGraphics& graphics) {
         graphics.diagnosis = {{L"szDescription", L"Microsoft Basic Display Adapter"},
                               {L"szVendorId", L"0x10de"},
                               {L"szDeviceId", L"0x1c03"}};
     },
     L"9:1 DxDiag:1 ",
     {L"Yes|1|Microsoft Basic Display Adapter|PCI\\VEN_10DE&DEV_1C03&SUBSYS_11D710DE&REV_A1|||10.0.19041.1||"
      L"||Yes|No|No|No||",
      L"No|12.0||||No|Yes|Yes|Yes|Yes"}},
    {"a remote session",
     L"",
     {{L"Microsoft Remote Display Adapter", 0x1414, 0x1, 0, 0, 4096, 1},
      BasicRender,
      {L"Some other renderer", 0x9999, 0x1, 0, 0, 4096, 2}},
     {{L"Microsoft Remote Display Adapter", L"SWD\\REMOTEDISPLAYENUM\\RDPIDD_INDIRECTDISPLAY&SESSIONID_0002",
       L"10.0"}},
     {},
     {},
     L"",
     {L"No|0||||||||||||||", L"No|12.0||||No|Yes|Yes|Yes|Yes"}},
    {"a virtual machine with a card of its own, a stale note, a runtime that refuses later levels",
     Levels,
     {VMware, Radeon},
     {},
     {{1, 0x10DE, 0x2684, 0xC100}, {2, 0x1002, 0x67DF, 0xC000}, {9, 0x1002, 0x67DF, 0x9100}},
     [](FakeGraphics& graphics) { graphics.newestLevel = D3D_FEATURE_LEVEL_11_1; },
     L"11:2 12:2 ",
     {L"Yes|2|Radeon RX 580 Series|PCI\\VEN_1002&DEV_67DF&SUBSYS_E3531DA2&REV_A1|4.0 GB|8.0 GB|9.8.7.6||12.0|"
      L"No|No|Yes|No|No||",
      L"VMware SVGA 3D|PCI\\VEN_15AD&DEV_0405&SUBSYS_040515AD&REV_A1|8.0 GB|1.0 GB|||11.1|No|No|No|No|Yes||",
      L"Yes|12.0|12.0|6.0|2.7|No|Yes|Yes|Yes|Yes"}},
    {"a driver that fails inside, on Windows 7",
     Levels,
     {{L"Old", 0x1002, 0x9440, 0x5001002, 512, 1024, 0, 0xA100, 0, 0, 1105, 0x8001100040005, true}},
     {},
     {},
     [](FakeGraphics& graphics) {
         graphics.libraries = L"d3d9.dll d3d10.dll d3d10_1.dll d3d11.dll ";
         graphics.system = 61;
     },
     L"10:1 11:1 ",
     {L"Yes|1|Old|PCI\\VEN_1002&DEV_9440&SUBSYS_05001002&REV_A1|512.0 MB|1.0 GB|8.17.4.5||10.1|No|No|Yes|No|"
      L"No||",
      L"Yes|11.0|10.1|4.1|1.1|No|Yes|Yes|Yes|No"}},
    {"Direct3D 9 and DxDiag alone",
     L"72004|72014|72015",
     {{L"RADEON X850", 0x1002, 0x4B49, 0, 0, 0, 0, 0, 0, 0, 0, 0x8001100040005}},
     {},
     {},
     [](FakeGraphics& graphics) {
         graphics.hasDxgi = false;
         graphics.libraries = L"d3d9.dll ";
         graphics.diagnosis = {
             {L"szVendorId", L"0x1002"}, {L"szDeviceId", L"0x4b49"}, {L"szDisplayMemoryEnglish", L"256 MB"},
             {L"szChipType", L"R480"},   {L"szDACType", L"n/a"},     {L"szDriverModel", L"WDDM 1.0"}};
     },
     L"9:1 DxDiag:1 ",
     {L"Yes|1|RADEON X850|PCI\\VEN_1002&DEV_4B49&REV_A1|256.0 MB||8.17.4.5||9.3|No|No|Yes|No|No|R480|",
      L"Yes|9.0C|9.3|3.0|1.0|No|Yes|No|No|No"}},
};

}  // namespace kel::test
