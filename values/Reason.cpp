#include "values/Reason.h"

#include "values/Hexadecimal.h"

namespace kel {

namespace {

constexpr std::uint32_t FailureBit = 0x80000000;  // of an HRESULT

std::wstring ReadFailureText(const SourceFailure& failure)
{
    std::wstring text = L"not readable: " + failure.source;
    if (failure.error == 0)
        return text;
    text += L", error ";
    text += (failure.error & FailureBit) != 0 ? L"0x" + Hexadecimal(failure.error, 8)
                                              : std::to_wstring(failure.error);
    return text;
}

}  // namespace

std::wstring Reason::ToString() const
{
    switch (kind) {
        case Kind::NotReadable:
            return ReadFailureText(failure);
        case Kind::NotAskedFor:
            return L"not asked for";
        case Kind::DetectorFailed:
            return L"the detector failed";
        default:
            return L"not there";
    }
}

}  // namespace kel
