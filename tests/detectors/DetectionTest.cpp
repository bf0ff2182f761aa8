#include <gtest/gtest.h>

#include "detectors/CPU.h"
#include "detectors/Components.h"
#include "probes/CPUID.h"
#include "support/FakeWmi.h"
#include "support/LogCapture.h"
#include "support/ScratchKey.h"
#include "support/TestSession.h"

namespace kel {
namespace {

struct BrokenSession : test::TestSession {
    SystemValues& Values() override { throw 1; }
};

TEST(Detectors, FailEachWithItsLineAndTheNextRuns)
{
    BrokenSession session;
    session.wanted.Assign(L"71069", L"");
    const test::LogCapture log(1);
    Components().DetectAll();
    EXPECT_EQ(log.Lines(), (std::vector<std::wstring>{
                               L"ERR Error in CPU detection.", L"ERR Error in Bios detection.",
                               L"ERR Error in Chassis detection.", L"ERR Error in Motherboard detection.",
                               L"ERR Error in NetworkDevice detection.", L"ERR Error in OS detection.",
                               L"ERR Error in Ram detection."}));
}

TEST(Detectors, StoreEachFieldOfTheProcessorFromTheFirstSourceThatHasIt)
{
    test::FakeWmiData data;
    data.objects[L"SELECT * FROM Win32_Processor"] = {
        {{L"Name", {L"wmi"}}, {L"Manufacturer", {L"wmi"}}, {L"MaxClockSpeed", {1234L, CIM_UINT32}}}};
    const test::FakeWmi fake(data);
    test::ScratchKey machine;
    machine.StandFor(HKEY_LOCAL_MACHINE);
    const std::wstring key = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
    machine.Write(key, L"~MHz", L"1800");
    machine.Write(key, L"Platform ID", L"P");
    machine.Write(key, L"Update Signature", REG_BINARY, "\0\0\0\0\x0B", 5);
    machine.Write(L"SOFTWARE\\Intel\\Infinst", L"version", L"9");
    test::TestSession session;
    CPU().Detect();
    CpuInfo cpuid;
    CPUID::Instance().GetCpuInfo(cpuid);
    const auto flag = [](bool isSet) { return isSet ? L"Yes" : L"No"; };
    const std::pair<unsigned, std::wstring> stored[] = {{71061, L"wmi"},
                                                        {71062, L"1.8 GHz"},
                                                        {71296, cpuid.vendor},
                                                        {71385, cpuid.stepping},
                                                        {71390, cpuid.family},
                                                        {71391, cpuid.model},
                                                        {71389, cpuid.type},
                                                        {71386, cpuid.cpuId},
                                                        {71404, cpuid.cpuIdShort},
                                                        {71355, L"P"},
                                                        {71392, L"0B"},
                                                        {71393, L"9"},
                                                        {71398, L""},
                                                        {71399, L""},
                                                        {71252, flag(cpuid.isAmd)},
                                                        {71256, flag(cpuid.isIntel)},
                                                        {71253, flag(cpuid.cacheDescriptor40)}};
    for (const auto& [id, text] : stored)
        EXPECT_EQ(session.Text(id), text) << id;
}

}  // namespace
}  // namespace kel
