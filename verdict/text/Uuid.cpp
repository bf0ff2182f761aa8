#include "verdict/text/Uuid.h"

namespace kel {

bool IsUuid(std::string_view text)
{
    constexpr std::string_view Form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    if (text.size() != Form.size())
        return false;
    for (std::size_t i = 0; i < Form.size(); ++i) {
        const char c = text[i];
        const bool isDigit = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
        if (Form[i] == 'x' ? !isDigit : c != Form[i])
            return false;
    }
    return true;
}

}  // namespace kel
