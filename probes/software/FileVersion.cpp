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
    const DWORD high = read.fixed.dwFileVersionMS;
    const DWORD low = read.fixed.dwFileVersionLS;
    for (const DWORD part : {high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF}) {
        if (!text.empty())
            text += L'.';
        text += std::to_wstring(part);
    }
    return text;
}

}  // namespace kel
