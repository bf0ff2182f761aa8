#include "values/Hexadecimal.h"

#include <iomanip>
#include <sstream>

namespace kel {

std::wstring Hexadecimal(std::uint64_t number, int digits)
{
    std::wostringstream text;
    text << std::hex << std::uppercase << std::setfill(L'0') << std::setw(digits) << number;
    return text.str();
}

}  // namespace kel
