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
    const auto part = [vendor](std::size_t start) {
        std::uint32_t value = 0;
        std::memcpy(&value, vendor + start, sizeof(value));
        return value;
    };
    return {maxLeaf, part(0), part(8), part(4)};
}

CPUID Chip(const Leaves& leaves)
{
    return CPUID([leaves](std::uint32_t leaf) {
        const auto found = leaves.find(leaf);
        return found != leaves.end() ? found->second : CpuRegisters{};
    });
}

// Signatures (EAX of leaf 1) as the makers publish them in their specification updates and revision guides.
TEST(CPUID, DecodesProcessorsOfManyMakersAndAges)
{
    const struct {
        const char* chip;
        const char* vendorString;
        std::uint32_t eax;
        const wchar_t *vendor, *family, *model, *stepping, *type;
    } rows[] = {
        {"Intel 486 DX4", "GenuineIntel", 0x00000480, L"Intel", L"04", L"08", L"0", L"00"},
        {"Intel Pentium P54C", "GenuineIntel", 0x0000052C, L"Intel", L"05", L"02", L"C", L"00"},
        {"Intel Pentium OverDrive", "GenuineIntel", 0x00001532, L"Intel", L"05", L"03", L"2", L"01"},
        {"Intel Pentium MMX", "GenuineIntel", 0x00000543, L"Intel", L"05", L"04", L"3", L"00"},
        {"Intel Pentium Pro", "GenuineIntel", 0x00000619, L"Intel", L"06", L"01", L"9", L"00"},
        {"Intel Pentium II OverDrive", "GenuineIntel", 0x00001632, L"Intel", L"06", L"03", L"2", L"01"},
        {"Intel Pentium III Coppermine", "GenuineIntel", 0x00000686, L"Intel", L"06", L"08", L"6", L"00"},
        {"Intel Core 2 Duo Conroe", "GenuineIntel", 0x000006F6, L"Intel", L"06", L"0F", L"6", L"00"},
        {"Intel Core 2 Penryn", "GenuineIntel", 0x00010676, L"Intel", L"06", L"17", L"6", L"00"},
        {"Intel Atom Silverthorne", "GenuineIntel", 0x000106C2, L"Intel", L"06", L"1C", L"2", L"00"},
        {"Intel Core i7 Nehalem", "GenuineIntel", 0x000106A5, L"Intel", L"06", L"1A", L"5", L"00"},
        {"Intel Sandy Bridge", "GenuineIntel", 0x000206A7, L"Intel", L"06", L"2A", L"7", L"00"},
        {"Intel Haswell", "GenuineIntel", 0x000306C3, L"Intel", L"06", L"3C", L"3", L"00"},
        {"Intel Skylake", "GenuineIntel", 0x000506E3, L"Intel", L"06", L"5E", L"3", L"00"},
        {"Intel Coffee Lake", "GenuineIntel", 0x000906EA, L"Intel", L"06", L"9E", L"A", L"00"},
        {"Intel Alder Lake", "GenuineIntel", 0x00090672, L"Intel", L"06", L"97", L"2", L"00"},
        {"Intel Pentium 4 Willamette", "GenuineIntel", 0x00000F0A, L"Intel", L"0F", L"00", L"A", L"00"},
        {"Intel Pentium 4 Prescott", "GenuineIntel", 0x00000F41, L"Intel", L"0F", L"04", L"1", L"00"},
        {"AMD K6-2", "AuthenticAMD", 0x0000058C, L"AMD", L"05", L"08", L"C", L"00"},
        {"AMD Athlon Thunderbird", "AuthenticAMD", 0x00000642, L"AMD", L"06", L"04", L"2", L"00"},
        {"AMD Athlon XP Barton", "AuthenticAMD", 0x000006A0, L"AMD", L"06", L"0A", L"0", L"00"},
        {"AMD Athlon 64 Clawhammer", "AuthenticAMD", 0x00000F4A, L"AMD", L"0F", L"04", L"A", L"00"},
        {"AMD Phenom Agena", "AuthenticAMD", 0x00100F23, L"AMD", L"10", L"02", L"3", L"00"},
        {"AMD FX Zambezi", "AuthenticAMD", 0x00600F12, L"AMD", L"15", L"01", L"2", L"00"},
        {"AMD Ryzen Summit Ridge", "AuthenticAMD", 0x00800F11, L"AMD", L"17", L"01", L"1", L"00"},
        {"AMD Ryzen Matisse", "AuthenticAMD", 0x00870F10, L"AMD", L"17", L"71", L"0", L"00"},
        {"AMD Ryzen Vermeer", "AuthenticAMD", 0x00A20F10, L"AMD", L"19", L"21", L"0", L"00"},
        {"Hygon Dhyana", "HygonGenuine", 0x00900F02, L"", L"18", L"00", L"2", L"00"},
        {"IDT WinChip C6", "CentaurHauls", 0x00000541, L"Centaur", L"05", L"04", L"1", L"00"},
        {"VIA C3 Nehemiah", "CentaurHauls", 0x00000698, L"Centaur", L"06", L"09", L"8", L"00"},
        {"VIA Nano", "CentaurHauls", 0x000006F2, L"Centaur", L"06", L"0F", L"2", L"00"},
        {"Cyrix 6x86MX", "CyrixInstead", 0x00000600, L"Cyrix", L"06", L"00", L"0", L"00"},
        {"Transmeta Crusoe", "GenuineTMx86", 0x00000543, L"Transmeta", L"05", L"04", L"3", L"00"},
        {"Geode GX1", "Geode by NSC", 0x00000540, L"National Semiconductor", L"05", L"04", L"0", L"00"},
        {"Rise mP6", "RiseRiseRise", 0x00000504, L"Rise", L"05", L"00", L"4", L"00"},
        {"SiS 55x", "SiS SiS SiS ", 0x00000505, L"Sis", L"05", L"00", L"5", L"00"},
    };
    for (const auto& row : rows) {
        CpuInfo info;
        EXPECT_TRUE(
            Chip({{0, VendorLeaf(row.vendorString, 1)}, {1, {row.eax, 0, 0, 0x0183FBFF}}}).GetCpuInfo(info));
        EXPECT_EQ(info.vendor, row.vendor) << row.chip;
        EXPECT_EQ(info.family, row.family) << row.chip;
        EXPECT_EQ(info.model, row.model) << row.chip;
        EXPECT_EQ(info.stepping, row.stepping) << row.chip;
        EXPECT_EQ(info.type, row.type) << row.chip;
        EXPECT_EQ(info.isIntel, info.vendor == L"Intel") << row.chip;
        EXPECT_EQ(info.isAmd, info.vendor == L"AMD") << row.chip;
    }
}

TEST(CPUID, WritesTheIdInSixteenDigitsAndItsLastSix)
{
    CpuInfo info;
    Chip({{0, VendorLeaf("GenuineIntel", 1)}, {1, {0x000506E3, 0, 0, 0xBFEBFBFF}}}).GetCpuInfo(info);
    EXPECT_EQ(info.cpuId, L"BFEBFBFF000506E3");
    EXPECT_EQ(info.cpuIdShort, L"0506E3");
    CpuInfo refused;
    Chip({{0, VendorLeaf("GenuineIntel", 0)}, {1, {0x506E3, 0, 0, 1}}, {2, {0x40404040, 0, 0, 0}}})
        .GetCpuInfo(refused);
    EXPECT_EQ(refused.vendor, L"Intel");
    EXPECT_EQ(refused.cpuId + refused.cpuIdShort + refused.family + refused.stepping, L"");
    EXPECT_FALSE(refused.cacheDescriptor40);
}

TEST(CPUID, LooksForTheCacheDescriptorEverywhereButInTheCount)
{
    const std::pair<CpuRegisters, bool> rows[] = {
        {{0x00000040, 0, 0, 0}, false},   {{0x00004001, 0, 0, 0}, true}, {{0x40000001, 0, 0, 0}, true},
        {{1, 0x40, 0, 0}, true},          {{1, 0, 0x4000, 0}, true},     {{1, 0, 0, 0x400000}, true},
        {{1, 0x04, 0x41, 0x0400}, false},
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
    CPUID without = Chip({});
    EXPECT_FALSE(without.Execute(0x80000001, registers));
}

TEST(SystemCpu, MeasuresTheTimeStampCounter)
{
    // The system's own clock over the same counter is the reference.
    const auto tick = [] {
        const DWORD start = GetTickCount();
        while (GetTickCount() == start) {
        }
        return std::pair<std::uint64_t, DWORD>(__builtin_ia32_rdtsc(), GetTickCount());
    };
    const auto [firstStamp, firstTick] = tick();
    const float measured = MeasureMegahertz();
    const auto [lastStamp, lastTick] = tick();
    const double reference = static_cast<double>(lastStamp - firstStamp) / ((lastTick - firstTick) * 1000.0);
    EXPECT_NEAR(measured / reference, 1.0, 0.02);
    EXPECT_GE(lastTick - firstTick, 990U);
}

}  // namespace
}  // namespace kel
