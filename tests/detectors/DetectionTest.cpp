#include <gtest/gtest.h>

#include "detectors/Components.h"
#include "detectors/Detectors.h"
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
    Components().DetectAll();  // once per process, whoever asks
    EXPECT_EQ(log.Lines(), (std::vector<std::wstring>{
                               L"ERR Error in CPU detection.", L"ERR Error in Bios detection.",
                               L"ERR Error in Chassis detection.", L"ERR Error in Motherboard detection.",
                               L"ERR Error in NetworkDevice detection.", L"ERR Error in OS detection.",
                               L"ERR Error in Ram detection."}));
}

TEST(Detectors, StoreEachFieldOfTheProcessorInOrderFromTheFirstSourceThatHasIt)
{
    test::FakeWmiData data;
    data.objects[L"SELECT * FROM Win32_Processor"] = {
        {{L"Name", {L" w  mi "}}, {L"Manufacturer", {L"wmi"}}, {L"MaxClockSpeed", {1234L, CIM_UINT32}}}};
    const test::FakeWmi fake(data);
    const test::ScratchKey machine(HKEY_LOCAL_MACHINE);
    const std::wstring key = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
    {
        const test::TestSession without;
        CPU().Detect();
        EXPECT_EQ(without.Text(71062), L"1.2 GHz");  // WMI's, and not the measured one
    }
    machine.Write(key, L"~MHz", L"1800");
    machine.Write(key, L"Platform ID", L"P");
    machine.Write(key, L"Update Signature", REG_BINARY, "\0\0\0\0\x0B", 5);
    machine.Write(L"SOFTWARE\\Intel\\Infinst", L"infver", L"8");
    machine.Write(L"SOFTWARE\\Intel\\Infinst", L"version", L"9");
    test::TestSession session;
    CPU().Detect();
    CpuInfo cpuid;
    CPUID::Instance().GetCpuInfo(cpuid);
    const auto flag = [](bool isSet) { return std::wstring(isSet ? L"Yes|" : L"No|"); };
    EXPECT_EQ(session.Texts({71061, 71062, 71355, 71392, 71393, 71398, 71399}), L"w mi|1.8 GHz|P|0B|9|||");
    EXPECT_EQ(session.Texts({71296, 71385, 71390, 71391, 71389}), cpuid.vendor + L"|" + cpuid.stepping +
                                                                      L"|" + cpuid.family + L"|" +
                                                                      cpuid.model + L"|" + cpuid.type + L"|");
    EXPECT_EQ(session.Texts({71386, 71404}), cpuid.cpuId + L"|" + cpuid.cpuIdShort + L"|");
    EXPECT_EQ(session.Texts({71252, 71256, 71253}),
              flag(cpuid.isAmd) + flag(cpuid.isIntel) + flag(cpuid.cacheDescriptor40));
    EXPECT_EQ(session.Texts({71257}), flag(std::stoi(session.Text(71254)) > 1));
    std::vector<unsigned> order = {71061, 71254, 71062, 71296, 71385, 71390, 71391, 71389, 71386, 71404,
                                   71355, 71398, 71392, 71257, 71256, 71252, 71253, 71399, 71393};
    if (cpuid.isIntel) {  // the flag is then stored before all others, too
        std::erase(order, 71256U);
        order.insert(order.begin(), 71256U);
    }
    EXPECT_EQ(session.Numbers(), order);
}

}  // namespace
}  // namespace kel
