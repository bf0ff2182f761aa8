#include "values/Count.h"

#include <string>

#include "diag/Log.h"
#include "values/Clone.h"

namespace kel {

const wchar_t* Count::ToString() const
{
    static std::wstring text;
    text.clear();
    try {
        text = std::to_wstring(value);
    } catch (...) {
        ReportFailure(LogWarning, L"Error in Count ToString.");
    }
    return text.c_str();
}

Count* Count::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
