#include "probes/graphics/AdapterNumbers.h"

#include "values/Hexadecimal.h"

namespace kel {

std::wstring LuidText(std::uint64_t luid)
{
    return Hexadecimal(luid, 16);
}

std::wstring LuidText(LUID luid)
{
    return LuidText(static_cast<std::uint64_t>(static_cast<DWORD>(luid.HighPart)) << 32 | luid.LowPart);
}

std::optional<Version> DriverVersion(std::uint64_t numbers)
{
    if (numbers == 0 || numbers == ~std::uint64_t{0})
        return {};
    std::wstring text;
    for (int shift = 48; shift >= 0; shift -= 16)
        text += std::to_wstring(numbers >> shift & 0xFFFF) + (shift != 0 ? L"." : L"");
    return Version(text);
}

}  // namespace kel
