#include "probes/cpu/CPUID.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <map>

#include "probes/cpu/SystemCpu.h"
#include "support/Machines.h"

namespace kel {
namespace {

CPUID Chip(const std::map<std::uint32_t, CpuRegisters>& leaves)
{
    return CPUID(
        [leaves](std::uint32_t leaf) {
            const auto found = leaves.find(leaf);
            return found != leaves.end() ? found->second : CpuRegisters{};
        },
        [] { return 0; });
}

/// What is reported for a chip with a vendor's 12 characters in leaf 0.
CpuInfo Describe(const std::wstring& vendor, std::uint32_t maxLeaf, CpuRegisters signature)
{
    std::uint32_t parts[3] = {};
    std::ranges::copy(std::string(vendor.begin(), vendor.end()), reinterpret_cast<char*>(parts));
    CpuInfo info;
    EXPECT_TRUE(Chip({{0, {maxLeaf, parts[0], parts[2], parts[1]}}, {1, signature}, {2, {0x4040, 0, 0, 0}}})
                    .GetCpuInfo(info));
    return info;
}

TEST(CPUID, DecodesProcessorsOfManyVendorsAndAges)
{
    const auto rows = test::ReadRows("processors.txt");
    ASSERT_GE(rows.size(), 20U);
    for (const std::wstring& row : rows) {
        const auto fields = test::Split(row, L';');  // chip, vendor, signature, stored values
        const CpuInfo info = Describe(fields[1], 1, {std::stoul(fields[2], nullptr, 16), 0, 0, 1});
        EXPECT_EQ(
            info.vendor + L" " + info.family + L" " + info.model + L" " + info.stepping + L" " + info.type,
            fields[3])
            << row;
        EXPECT_EQ(info.isIntel, info.vendor == L"Intel") << row;
        EXPECT_EQ(info.isAmd, info.vendor == L"AMD") << row;
    }
    const CpuInfo info = Describe(L"GenuineIntel", 1, {0x000506E3, 0, 0, 0x00EBFBFF});
    EXPECT_EQ(info.cpuId + L" " + info.cpuIdShort, L"00EBFBFF000506E3 0506E3");
    const CpuInfo refused = Describe(L"GenuineIntel", 0, {0x000506E3, 0, 0, 1});
    EXPECT_EQ(refused.vendor + refused.cpuId + refused.cpuIdShort + refused.family + refused.stepping,
              L"Intel");
    EXPECT_FALSE(refused.cacheDescriptor40);
}

TEST(CPUID, FindsTheCacheDescriptorInEveryByteButTheCount)
{
    const auto has = [](const CpuRegisters& registers) {
        return Chip({{0, {2, 0, 0, 0}}, {2, registers}}).HasCacheDescriptor40();
    };
    EXPECT_FALSE(has({0x40, 0, 0, 0}));
    EXPECT_FALSE(has({1, 4, 0x41, 0x0400}));
    for (const CpuRegisters& registers : {CpuRegisters{0x4001, 0, 0, 0},
                                          {0x40000001, 0, 0, 0},
                                          {1, 0x40, 0, 0},
                                          {1, 0, 0x40, 0},
                                          {1, 0, 0, 0x40},
                                          {1, 0, 0x4000, 0},
                                          {1, 0, 0, 0x400000}})
        EXPECT_TRUE(has(registers)) << testing::PrintToString(registers);

    // An extended leaf is refused by its low byte, which is never too large when there are any.
    CPUID chip = Chip({{0x80000000, {0x80000001, 0, 0, 0}}, {0x800000FF, {7, 0, 0, 0}}});
    CpuRegisters registers = {9, 9, 9, 9};
    EXPECT_FALSE(chip.Execute(2, registers));
    EXPECT_EQ(registers, CpuRegisters{});
    EXPECT_TRUE(chip.Execute(0x800000FF, registers));
    EXPECT_EQ(registers[0], 7U);
    EXPECT_FALSE(Chip({}).Execute(0x80000001, registers));

    wchar_t own[16] = {};
    DWORD size = sizeof(own);
    RegGetValueW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0",
                 L"VendorIdentifier", RRF_RT_REG_SZ, nullptr, own, &size);
    EXPECT_EQ(CPUID().GetVendorString(), own);
}

TEST(SystemCpu, MeasuresTheTimeStampCounter)
{
    // The system's own clock over the same counter is the reference. Both are read again when the thread lost
    // its processor between them.
    const auto read = [] {
        for (DWORD tick = GetTickCount();;) {
            for (const DWORD start = tick; tick == start;)
                tick = GetTickCount();
            const auto stamp = static_cast<double>(__builtin_ia32_rdtsc());
            if (GetTickCount() == tick)
                return std::pair(stamp, tick);
        }
    };
    const auto [firstStamp, firstTick] = read();
    const double measured = MeasureMegahertz();  // counts on while the thread waits for a processor
    const auto [lastStamp, lastTick] = read();
    const double reference = (lastStamp - firstStamp) / ((lastTick - firstTick) * 1000.0);
    EXPECT_GE(measured, 0.98 * reference);
    EXPECT_LE(measured, 1.0001 * (lastStamp - firstStamp) / 1e6);
    EXPECT_GE(lastTick - firstTick, 990U);
}

TEST(SystemCpu, CountsTheProcessorsAndMeasuresTheirSpeed)
{
    CpuInfo info;
    EXPECT_TRUE(GetSystemCpuInfo(CpuFunctions::OfSystem(), info));
    SYSTEM_INFO system = {};
    GetSystemInfo(&system);
    EXPECT_EQ(info.processorCount, std::to_wstring(system.dwNumberOfProcessors));
    EXPECT_GT(info.speed.Hertz(), 100'000'000U);
}

}  // namespace
}  // namespace kel
