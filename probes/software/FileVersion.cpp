#include "probes/software/FileVersion.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace kel {

namespace {

/// The start of a version record; texts follow the fixed part.
struct VersionRecord {
    WORD length;
    WORD fixedLength;
    WORD type;
    wchar_t key[17];  // the name with its zero, and a filler to the next four bytes
    VS_FIXEDFILEINFO fixed;
};
static_assert(offsetof(VersionRecord, fixed) == 40 && sizeof(VersionRecord) == 92);

constexpr wchar_t Key[] = L"VS_VERSION_INFO";
constexpr DWORD Signature = 0xFEEF04BD;

}  // namespace

std::wstring ReadFixedVersion(std::span<const BYTE> record)
{
    VersionRecord read;
    if (record.size() < sizeof(read))
        return {};
    std::memcpy(&read, record.data(), sizeof(read));
    if (read.length < sizeof(read) || read.fixedLength != sizeof(read.fixed) ||
        !std::equal(std::begin(Key), std::end(Key), read.key) || read.fixed.dwSignature != Signature ||
        (read.fixed.dwFileVersionMS == 0 && read.fixed.dwFileVersionLS == 0))
        return {};
    std::wstring text;
    for (const DWORD part : {read.fixed.dwFileVersionMS, read.fixed.dwFileVersionLS})
        text +=
            (text.empty() ? L"" : L".") + std::to_wstring(part >> 16) + L"." + std::to_wstring(part & 0xFFFF);
    return text;
}

}  // namespace kel
