#include "platform/Policy.h"

#include <gtest/gtest.h>

#include "support/ScratchKey.h"

namespace kel {
namespace {

TEST(Policy, LimitsItsNumbersAndTexts)
{
    constexpr DWORD None = 0xFFFFFFFF;
    const std::tuple<DWORD, int, DWORD, std::uint64_t> rows[] = {
        // LogLevel, as read, LogSize, as read in kilobytes
        {None, 3, None, 1024}, {0, 1, 1023, 1024},     {1, 1, 1024, 1024},
        {2, 2, 1025, 1025},    {7, 7, 102400, 102400}, {8, 7, 102401, 102400},
    };
    for (const auto& [level, logLevel, size, kilobytes] : rows) {
        const test::ScratchKey machine;
        machine.Write(L"Software\\Policies\\Keldane", L"ServiceHost", std::wstring(511, L'h'));
        machine.Write(L"Software\\Policies\\Keldane", L"LogFile", std::wstring(512, L'f'));
        if (level != None)
            machine.Write(L"Software\\Policies\\Keldane", L"LogLevel", REG_DWORD, &level, sizeof(level));
        if (size != None)
            machine.Write(L"Software\\Policies\\Keldane", L"LogSize", REG_DWORD, &size, sizeof(size));
        const Policy policy = ReadPolicy(machine.Key());
        EXPECT_EQ(policy.logLevel, logLevel) << level;
        EXPECT_EQ(policy.logSize, kilobytes * 1024) << size;
        EXPECT_EQ(policy.serviceHost, std::wstring(511, L'h'));
        EXPECT_EQ(policy.logFile, L"") << "longer than 1,024 bytes with its zero";
    }
    const test::ScratchKey machine;
    machine.Write(L"Software\\Policies\\Keldane", L"LogLevel", L"5");
    EXPECT_EQ(ReadPolicy(machine.Key()).logLevel, 3) << "a text";
}

}  // namespace
}  // namespace kel
