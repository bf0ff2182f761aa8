#include "values/Speed.h"

#include <array>
#include <string>

#include "values/Clone.h"
#include "values/Quantity.h"

namespace kel {

namespace {

constexpr std::array<Unit, 3> ParsedSpeedUnits = {{{L"KHZ", 1e3}, {L"MHZ", 1e6}, {L"GHZ", 1e9}}};
constexpr std::array<const wchar_t*, 4> PrintedSpeedUnits = {L"Hz", L"KHz", L"MHz", L"GHz"};

}  // namespace

bool Speed::Initialize(const wchar_t* text)
{
    return ReadQuantity(text, ParsedSpeedUnits, L"Error while initializing Speed", hertz);
}

const wchar_t* Speed::ToString() const
{
    static std::wstring text;
    // Its line says "size"; support looks for that text.
    return WriteQuantity(hertz, 1000.0, PrintedSpeedUnits, L"Error while formatting size string.", text);
}

Speed* Speed::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
