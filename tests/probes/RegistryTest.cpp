#include "probes/Registry.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "support/ScratchKey.h"

namespace kel {
namespace {

TEST(Registry, ReadsAnyTypeAsTextUpToItsFirstZero)
{
    const test::ScratchKey key;
    const std::wstring longText(5000, L'x');
    const std::tuple<const wchar_t*, DWORD, const wchar_t*, std::size_t, std::wstring> rows[] = {
        {L"odd", REG_SZ, L"abc", 5, L"abc"},          {L"empty", REG_SZ, L"", 0, L""},
        {L"zero first", REG_SZ, L"\0a", 4, L""},      {L"number", REG_DWORD, L"\x0960", 4, L"\x0960"},
        {L"terminated", REG_SZ, L"abc", 8, L"abc"},   {L"binary", REG_BINARY, L"\0\0a\0\0b", 14, L"ab"},
        {L"zero inside", REG_SZ, L"a\0b", 6, L"a"},   {L"multi", REG_MULTI_SZ, L"one\0two\0", 18, L"one"},
        {L"unterminated", REG_SZ, L"abc", 6, L"abc"}, {L"long", REG_SZ, longText.c_str(), 10000, longText},
    };
    std::wstring text;
    for (const auto& [name, type, bytes, size, expected] : rows) {
        key.Write(L"sub", name, type, bytes, size);
        EXPECT_TRUE(Registry::ReadText(key.Key(), L"sub", name, text)) << name;
        EXPECT_EQ(text, expected) << name;
    }
    text = L"left over";
    EXPECT_FALSE(Registry::ReadText(key.Key(), L"sub", L"missing", text));
    EXPECT_FALSE(Registry::ReadText(key.Key(), L"missing", L"odd", text));
    EXPECT_EQ(text, L"left over");
}

constexpr const wchar_t* Processor = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";

TEST(Registry, FillsTheProcessorsRecord)
{
    const test::ScratchKey machine(HKEY_LOCAL_MACHINE);
    CpuInfo none, info;
    EXPECT_TRUE(Registry::Instance().GetCpuInfo(none));
    EXPECT_EQ(none.name + none.updateSignature, L"");
    const DWORD number = 2400;
    machine.Write(Processor, L"ProcessorNameString", L"  Chip  ");
    machine.Write(Processor, L"~MHz", REG_DWORD, &number, sizeof(number));
    machine.Write(Processor, L"Platform ID", L"P");
    machine.Write(Processor, L"Update Signature", L"1234");
    machine.Write(L"SOFTWARE\\Intel\\Infinst", L"infver", L"9.1");
    const test::LogCapture log(3);
    Registry::Instance().GetCpuInfo(info);
    EXPECT_EQ(info.name + L"|" + info.platformId + L"|" + info.chipsetSoftwareVersion, L"  Chip  |P|9.1");
    EXPECT_FALSE(info.speed.HasValue());  // a number value is no text that a speed can be read from
    EXPECT_EQ(info.updateSignature, L"");
    EXPECT_EQ(log.Lines(), (std::vector<std::wstring>{
                               L"TRACE Name = L  Chip  ",
                               L"WARN Registry value is missing or of no use: " + std::wstring(Processor) +
                                   L" Update Signature",
                               L"WARN Registry value is missing: SOFTWARE\\Intel\\Infinst version"}));
    machine.Write(Processor, L"Update Signature", REG_BINARY, "1234", 4);
    Registry::Instance().GetCpuInfo(info);
    EXPECT_EQ(info.updateSignature, L"");
}

}  // namespace
}  // namespace kel
