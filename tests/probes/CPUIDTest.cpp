#include "probes/CPUID.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <map>

#include "probes/SystemCpu.h"

namespace kel {
namespace {

using Leaves = std::map<std::uint32_t, CpuRegisters>;

/// The registers of leaf 0 for a vendor's 12 characters.
CpuRegisters VendorLeaf(const char* vendor, std::uint32_t maxLeaf)
{
    std::uint32_t parts[3] = {};
    std::memcpy(parts, vendor, sizeof(parts));
    return {maxLeaf, parts[0], parts[2], parts[1]};
}

CPUID Chip(const Leaves& leaves)
{
    return CPUID([leaves](std::uint32_t leaf) {
        const auto found = leaves.find(leaf);
        return found != leaves.end() ? found->second : CpuRegisters{};
    });
}

// Signatures (EAX of leaf 1) as the makers publish them in their errata lists and revision guides.
TEST(CPUID, DecodesProcessorsOfManyMakersAndAges)
{
    const std::tuple<const char*, const char*, std::uint32_t, const wchar_t*, const wchar_t*> rows[] = {
        {"Intel 486 DX4", "GenuineIntel", 0x00000480, L"Intel", L"04 08 0 00"},
        {"Intel Pentium P54C", "GenuineIntel", 0x0000052C, L"Intel", L"05 02 C 00"},
        {"Intel Pentium OverDrive", "GenuineIntel", 0x00001532, L"Intel", L"05 03 2 01"},
        {"Intel Pentium III Coppermine", "GenuineIntel", 0x00000686, L"Intel", L"06 08 6 00"},
        {"Intel Core 2 Penryn", "GenuineIntel", 0x00010676, L"Intel", L"06 17 6 00"},
        {"Intel Skylake", "GenuineIntel", 0x000506E3, L"Intel", L"06 5E 3 00"},
        {"Intel Alder Lake", "GenuineIntel", 0x00090672, L"Intel", L"06 97 2 00"},
        {"Intel Pentium 4 Willamette", "GenuineIntel", 0x00000F0A, L"Intel", L"0F 00 A 00"},
        {"AMD K6-2", "AuthenticAMD", 0x0000058C, L"AMD", L"05 08 C 00"},
        {"AMD Athlon 64 Clawhammer", "AuthenticAMD", 0x00000F4A, L"AMD", L"0F 04 A 00"},
        {"AMD FX Zambezi", "AuthenticAMD", 0x00600F12, L"AMD", L"15 01 2 00"},
        {"AMD Ryzen Matisse", "AuthenticAMD", 0x00870F10, L"AMD", L"17 71 0 00"},
        {"Hygon Dhyana", "HygonGenuine", 0x00900F02, L"", L"18 00 2 00"},
        {"VIA C3 Nehemiah", "CentaurHauls", 0x00000698, L"Centaur", L"06 09 8 00"},
        {"VIA Nano", "CentaurHauls", 0x000006F2, L"Centaur", L"06 0F 2 00"},
        {"Cyrix 6x86MX", "CyrixInstead", 0x00000600, L"Cyrix", L"06 00 0 00"},
        {"Transmeta Crusoe", "GenuineTMx86", 0x00000543, L"Transmeta", L"05 04 3 00"},
        {"Geode GX1", "Geode by NSC", 0x00000540, L"National Semiconductor", L"05 04 0 00"},
        {"a family 5 with bits of the extended model", "GenuineIntel", 0x000F0543, L"Intel", L"05 04 3 00"},
        {"Rise mP6", "RiseRiseRise", 0x00000504, L"Rise", L"05 00 4 00"},
        {"NexGen Nx586", "NexGenDriven", 0x00000500, L"NexGen", L"05 00 0 00"},
        {"UMC U5S", "UMC UMC UMC ", 0x00000423, L"UMC", L"04 02 3 00"},
        {"SiS 55x", "SiS SiS SiS ", 0x00000505, L"Sis", L"05 00 5 00"},
    };
    for (const auto& [chip, vendorString, eax, vendor, familyModelSteppingType] : rows) {
        CpuInfo info;
        EXPECT_TRUE(Chip({{0, VendorLeaf(vendorString, 1)}, {1, {eax, 0, 0, 1}}}).GetCpuInfo(info));
        EXPECT_EQ(info.vendor, vendor) << chip;
        EXPECT_EQ(info.family + L" " + info.model + L" " + info.stepping + L" " + info.type,
                  familyModelSteppingType)
            << chip;
        EXPECT_EQ(info.isIntel, info.vendor == L"Intel") << chip;
        EXPECT_EQ(info.isAmd, info.vendor == L"AMD") << chip;
    }
}

TEST(CPUID, WritesTheIdInSixteenDigitsAndItsLastSix)
{
    CpuInfo info, refused;
    Chip({{0, VendorLeaf("GenuineIntel", 1)}, {1, {0x000506E3, 0, 0, 0x00EBFBFF}}}).GetCpuInfo(info);
    EXPECT_EQ(info.cpuId + L" " + info.cpuIdShort, L"00EBFBFF000506E3 0506E3");
    Chip({{0, VendorLeaf("GenuineIntel", 0)}, {1, {0x506E3, 0, 0, 1}}, {2, {0x40404040, 0, 0, 0}}})
        .GetCpuInfo(refused);
    EXPECT_EQ(refused.vendor, L"Intel");
    EXPECT_EQ(refused.cpuId + refused.cpuIdShort + refused.family + refused.stepping, L"");
    EXPECT_FALSE(refused.cacheDescriptor40);
}

TEST(CPUID, LooksForTheCacheDescriptorEverywhereButInTheCount)
{
    const std::pair<CpuRegisters, bool> rows[] = {
        {{0x40, 0, 0, 0}, false},  {{0x4001, 0, 0, 0}, true},   {{0x40000001, 0, 0, 0}, true},
        {{1, 0x40, 0, 0}, true},   {{1, 0, 0x40, 0}, true},     {{1, 0, 0, 0x40}, true},
        {{1, 0, 0x4000, 0}, true}, {{1, 0, 0, 0x400000}, true}, {{1, 4, 0x41, 0x0400}, false},
    };
    for (const auto& [registers, has] : rows)
        EXPECT_EQ(Chip({{0, {2, 0, 0, 0}}, {2, registers}}).HasCacheDescriptor40(), has) << registers[0];
}

TEST(CPUID, RefusesStandardLeavesOnly)
{
    CPUID chip = Chip({{0, {1, 0, 0, 0}}, {0x80000000, {0x80000001, 0, 0, 0}}, {0x800000FF, {7, 0, 0, 0}}});
    CpuRegisters registers = {9, 9, 9, 9};
    EXPECT_FALSE(chip.Execute(2, registers));
    EXPECT_EQ(registers, CpuRegisters{});
    EXPECT_TRUE(chip.Execute(0x800000FF, registers));
    EXPECT_EQ(registers[0], 7U);
    EXPECT_FALSE(Chip({}).Execute(0x80000001, registers));
}

TEST(SystemCpu, MeasuresTheTimeStampCounter)
{
    // The system's own clock over the same counter is the reference.
    const auto tick = [] {
        for (const DWORD start = GetTickCount(); GetTickCount() == start;) {
        }
        return std::pair<double, DWORD>(__builtin_ia32_rdtsc(), GetTickCount());
    };
    const auto [firstStamp, firstTick] = tick();
    const float measured = MeasureMegahertz();
    const auto [lastStamp, lastTick] = tick();
    const double reference = (lastStamp - firstStamp) / ((lastTick - firstTick) * 1000.0);
    EXPECT_NEAR(measured / reference, 1.0, 0.02);
    EXPECT_GE(lastTick - firstTick, 990U);
}

}  // namespace
}  // namespace kel
