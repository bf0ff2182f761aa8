#include "values/Hexadecimal.h"

namespace kel {

std::wstring Hexadecimal(std::uint64_t number, int digits)
{
    std::wstring text;
    do {
        text.insert(text.begin(), L"0123456789ABCDEF"[number % 16]);
        number /= 16;
    } while (number != 0 || static_cast<int>(text.size()) < digits);
    return text;
}

}  // namespace kel
