#include "probes/system/Registry.h"

#include <gtest/gtest.h>

#include "diag/SourceFailures.h"
#include "platform/RegistryNames.h"
#include "platform/RegistryValue.h"
#include "probes/graphics/AdapterCache.h"
#include "probes/setup/SetupDevice.h"
#include "support/LogCapture.h"
#include "support/ScratchKey.h"
#include "values/Size.h"

namespace kel {
namespace {

using Lines = std::vector<std::wstring>;

TEST(Registry, ReadsTextsAndSizesOfEachType)
{
    const test::ScratchKey key;
    const ULONGLONG refused = ~0ULL;
    const std::wstring letters(502, L'x'), fitting(500, L'x');
    const struct {
        const wchar_t* name;
        DWORD type;
        const wchar_t* bytes;
        std::size_t length;
        std::wstring text;          ///< of the registry's probe
        const wchar_t* deviceText;  ///< of a device's key; null for none
        ULONGLONG size;
    } rows[] = {
        {L"string", REG_EXPAND_SZ, L"2 GB", 10, L"2 GB", L"2 GB", 2ULL << 30},
        {L"unterminated", REG_SZ, L"12345", 6, L"123", L"123", 123},
        {L"odd", REG_SZ, L"12345", 5, L"123", L"123", 123},
        {L"empty", REG_SZ, L"", 0, L"", L"", 0},
        {L"zero first", REG_SZ, L"\0a", 4, L"", L"", 0},
        {L"zero inside", REG_SZ, L"1\0b", 6, L"1", L"1", 1},
        {L"list", REG_MULTI_SZ, L"one\0two\0", 18, L"one", L"one", refused},
        {L"number", REG_DWORD, L"\x2800\xEE6B", 4, L"\x2800\xEE6B", L"4000000000", 4000000000U},
        {L"short number", REG_DWORD, L"\x2800", 2, L"\x2800", nullptr, refused},
        {L"large number", REG_QWORD, L"\x2\0\x3", 8, L"\x2", L"", 3ULL << 32 | 2},
        {L"five bytes", REG_BINARY, L"\x2\0\x3", 5, L"\x2\x3", nullptr, 3ULL << 32 | 2},
        {L"no bytes", REG_BINARY, L"", 0, L"", nullptr, refused},
        {L"long binary", REG_BINARY, L"\0\0a\0\0b", 14, L"ab", nullptr, refused},
        {L"largest", REG_SZ, letters.c_str(), 1000, fitting, fitting.c_str(), 0},
        {L"too large", REG_SZ, letters.c_str(), 1002, letters.substr(1), nullptr, refused},
    };
    std::wstring text;
    for (const auto& row : rows) {
        const bool isText = row.deviceText != nullptr;
        key.Write(L"sub", row.name, row.type, row.bytes, row.length);
        EXPECT_TRUE(Registry::ReadText(key.Key(), L"sub", row.name, text)) << row.name;
        EXPECT_EQ(text, row.text) << row.name;
        const test::LogCapture log(2);
        EXPECT_EQ(ReadRegistryValue(key.Key(), L"sub", row.name, text), isText) << row.name;
        EXPECT_EQ(text, isText ? row.deviceText : L"") << row.name;
        const Lines failed = {L"WARN Can't handle Registry value for: " + std::wstring(row.name)};
        EXPECT_EQ(log.Lines(), isText ? Lines{} : failed) << row.name;
        Size size(7);
        const bool isSize = ReadRegistrySize(key.Key(), L"sub", row.name, size);
        EXPECT_EQ(isSize ? size.Bytes() : refused, row.size) << row.name;
    }
    text = L"left over";
    EXPECT_FALSE(Registry::ReadText(key.Key(), L"sub", L"missing", text));
    EXPECT_FALSE(Registry::ReadText(key.Key(), L"missing", L"odd", text));
    EXPECT_EQ(text, L"left over");
    EXPECT_FALSE(ReadRegistryValue(nullptr, nullptr, L"string", text));
    EXPECT_FALSE(ReadRegistryValue(key.Key(), L"missing", L"string", text));
    EXPECT_FALSE(ReadRegistryValue(key.Key(), L"", L"string", text));  // stands in the subkey
    EXPECT_EQ(text, L"");
    const test::LogCapture log(3);
    EXPECT_FALSE(ReadRegistryValue(key.Key(), L"sub", L"missing", text));
    EXPECT_EQ(log.Lines().back(), L"WARN Can't handle Registry value for: missing");
    Log::Instance().exceptions(std::ios::badbit);  // raised by the name that is none
    EXPECT_FALSE(ReadRegistryValue(key.Key(), nullptr, nullptr, text));
    Log::Instance().exceptions(std::ios::goodbit);
    EXPECT_EQ(log.Lines().back(), L"WARN Error with CRegKey");
}

TEST(AdapterCache, LeavesWhatIsNotNotedEmpty)
{
    const test::ScratchKey machine(HKEY_LOCAL_MACHINE);
    machine.Write(L"SOFTWARE\\Microsoft\\DirectX\\1", L"Description", L"A card");
    std::vector<GpuInfo> adapters;
    ReadAdapterCache(adapters);
    ASSERT_EQ(adapters.size(), 1U);
    EXPECT_EQ(adapters[0].description.ToString(), std::wstring(L"A card"));
    EXPECT_EQ(adapters[0].luid, L"");
    EXPECT_FALSE(adapters[0].deviceId.HasValue());
}

TEST(RegistryNames, AreLimitedToTheRequestedCount)
{
    const test::ScratchKey key;
    for (const wchar_t* name : {L"a", L"b", L"c"}) {
        key.Make(name);
        key.Write(L"", name, L"text");
    }
    for (const DWORD maxCount : {0U, 2U, 3U, 4U}) {
        EXPECT_EQ(ListSubkeys(key.Key(), maxCount).size(), std::min<DWORD>(maxCount, 3)) << maxCount;
        EXPECT_EQ(ListValues(key.Key(), maxCount).size(), std::min<DWORD>(maxCount, 3)) << maxCount;
    }
}

TEST(Registry, NotesKeysThatCannotBeReadAndNotMissingOnes)
{
    const test::ScratchKey key;
    const FailureScope scope;
    EXPECT_FALSE(OpenKey(key.Key(), L"missing", KEY_READ));
    EXPECT_FALSE(ReadValue(key.Key(), L"missing"));
    EXPECT_TRUE(scope.Found().AreNone());
    EXPECT_FALSE(OpenKey(nullptr, L"unreadable", KEY_READ));
    ASSERT_EQ(scope.Found().sources.size(), 1U);
    EXPECT_EQ(scope.Found().sources[0].source, L"registry unreadable");
    EXPECT_EQ(scope.Found().sources[0].error, DWORD{ERROR_INVALID_HANDLE});
}

}  // namespace
}  // namespace kel
