#include "values/Speed.h"

#include <array>
#include <string>

#include "diag/Log.h"
#include "values/Clone.h"
#include "values/Quantity.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr std::array<Unit, 3> ParsedUnits = {{{L"KHZ", 1e3}, {L"MHZ", 1e6}, {L"GHZ", 1e9}}};
constexpr std::array<const wchar_t*, 4> PrintedUnits = {L"Hz", L"KHz", L"MHz", L"GHz"};

}  // namespace

bool Speed::Initialize(const wchar_t* text)
{
    if (text == nullptr)
        return false;
    try {
        hertz = TruncateToUnsigned(LeadingNumber(text) * UnitFactor(ToUpper(text), ParsedUnits));
        return true;
    } catch (...) {
        ReportFailure(LogWarning, L"Error while initializing Speed");
        return false;
    }
}

const wchar_t* Speed::ToString() const
{
    static std::wstring text;
    try {
        FormatQuantity(hertz, 1000.0, PrintedUnits, text);
    } catch (...) {
        ReportFailure(LogWarning, L"Error while formatting size string.");  // the line that support looks for
    }
    return text.c_str();
}

Speed* Speed::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
