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
    const struct {
        const wchar_t* name;
        DWORD type;
        std::wstring bytes;  // written as they stand
        std::size_t size;
        std::wstring text;
    } rows[] = {
        {L"string", REG_SZ, std::wstring(L"abc\0", 4), 8, L"abc"},
        {L"unterminated", REG_SZ, L"abc", 6, L"abc"},
        {L"odd", REG_SZ, L"abc", 5, L"abc"},
        {L"empty", REG_SZ, L"", 0, L""},
        {L"zeros inside", REG_SZ, std::wstring(L"a\0b", 3), 6, L"a"},
        {L"multi", REG_MULTI_SZ, std::wstring(L"one\0two\0\0", 9), 18, L"one"},
        {L"number", REG_DWORD, std::wstring(L"\x0960\0", 2), 4, L"\x0960"},
        {L"small number", REG_DWORD, std::wstring(L"A\0", 2), 4, L"A"},
        {L"binary", REG_BINARY, std::wstring(L"\0\0a\0\0b\0", 7), 14, L"ab"},
        {L"string like binary", REG_SZ, std::wstring(L"\0a", 2), 4, L""},
        {L"long", REG_SZ, longText, 10000, longText},
    };
    for (const auto& row : rows) {
        key.Write(L"sub", row.name, row.type, row.bytes.c_str(), row.size);
        std::wstring text = L"left over";
        EXPECT_TRUE(Registry::ReadText(key.Key(), L"sub", row.name, text)) << row.name;
        EXPECT_EQ(text, row.text) << row.name;
    }
    std::wstring text = L"left over";
    EXPECT_FALSE(Registry::ReadText(key.Key(), L"sub", L"missing", text));
    EXPECT_FALSE(Registry::ReadText(key.Key(), L"missing", L"string", text));
    EXPECT_EQ(text, L"left over");
}

constexpr const wchar_t* Processor = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";

TEST(Registry, FillsTheProcessorsRecord)
{
    test::ScratchKey machine;
    machine.StandFor(HKEY_LOCAL_MACHINE);
    CpuInfo none;
    EXPECT_TRUE(Registry::Instance().GetCpuInfo(none));
    EXPECT_EQ(none.name + none.platformId + none.updateSignature + none.chipsetSoftwareVersion, L"");

    const DWORD number = 2400;
    const BYTE signature[] = {0, 0, 0, 0, 0x0B, 0, 0, 0};
    machine.Write(Processor, L"ProcessorNameString", L"  Chip  ");
    machine.Write(Processor, L"~MHz", REG_DWORD, &number, sizeof(number));
    machine.Write(Processor, L"Platform ID", L"P");
    machine.Write(Processor, L"Update Signature", REG_BINARY, signature, sizeof(signature));
    machine.Write(L"SOFTWARE\\Intel\\Infinst", L"infver", L"9.1");
    const test::LogCapture log(3);
    CpuInfo info;
    Registry::Instance().GetCpuInfo(info);
    EXPECT_EQ(
        info.name + L"|" + info.platformId + L"|" + info.updateSignature + L"|" + info.chipsetSoftwareVersion,
        L"  Chip  |P|0B|9.1");
    EXPECT_FALSE(info.speed.HasValue());  // a number value is no text that a speed can be read from
    EXPECT_EQ(log.Lines(),
              (std::vector<std::wstring>{L"TRACE Name = L  Chip  ",
                                         L"WARN Registry value is missing: SOFTWARE\\Intel\\Infinst version"}));

    machine.Write(Processor, L"~MHz", L"1800");
    machine.Write(Processor, L"Update Signature", REG_BINARY, signature, 4);
    machine.Write(L"SOFTWARE\\Intel\\Infinst", L"version", L"8");
    CpuInfo second;
    Registry::Instance().GetCpuInfo(second);
    EXPECT_EQ(second.speed.Hertz(), 1800000000U);
    EXPECT_EQ(second.updateSignature + L"|" + second.chipsetSoftwareVersion, L"|8");
}

TEST(Registry, FillsTheFirmwaresRecords)
{
    test::ScratchKey machine;
    machine.StandFor(HKEY_LOCAL_MACHINE);
    machine.Write(L"HARDWARE\\DESCRIPTION\\System", L"SystemBiosDate", L"01/02/03");
    machine.Write(L"HARDWARE\\DESCRIPTION\\System\\BIOS", L"BIOSVendor", L"Maker");
    machine.Write(L"HARDWARE\\DESCRIPTION\\System\\BIOS", L"BaseBoardVersion", L"AAE1");
    BiosInfo bios;
    Registry::Instance().GetBiosInfo(bios);
    EXPECT_EQ(bios.version + L"|" + bios.date + L"|" + bios.name + bios.manufacturer, L"|01/02/03|");
    machine.Write(L"HARDWARE\\DESCRIPTION\\System\\BIOS", L"BIOSVersion", L"1.0");
    Registry::Instance().GetBiosInfo(bios);
    EXPECT_EQ(bios.version, L"Maker 1.0");
    BoardInfo board;
    Registry::Instance().GetBoardInfo(board);
    EXPECT_EQ(board.version + L"|" + board.manufacturer + board.product, L"AAE1|");
}

}  // namespace
}  // namespace kel
