#include "values/Reason.h"

#include "values/Hexadecimal.h"

namespace kel {

namespace {

constexpr std::uint32_t FailureBit = 0x80000000;  // of an HRESULT

std::wstring ErrorText(std::uint32_t error)
{
    return (error & FailureBit) != 0 ? L"0x" + Hexadecimal(error, 8) : std::to_wstring(error);
}

}  // namespace

std::wstring Reason::ToString() const
{
    switch (kind) {
        case Kind::NotReadable:
            return L"not readable: " + failure.source +
                   (failure.error != 0 ? L", error " + ErrorText(failure.error) : L"");
        case Kind::NotAskedFor:
            return L"not asked for";
        case Kind::DetectorFailed:
            return L"the detector failed";
        default:
            return L"not there";
    }
}

}  // namespace kel
