#include "values/Bandwidth.h"

#include <array>
#include <string>

#include "diag/Log.h"
#include "values/Clone.h"
#include "values/Quantity.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr std::array<Unit, 3> ParsedUnits = {
    {{L"KBPS", 1024.0}, {L"MBPS", 1048576.0}, {L"GBPS", 1073741824.0}}};
constexpr std::array<const wchar_t*, 4> PrintedUnits = {L"bps", L"Kbps", L"Mbps", L"Gbps"};

}  // namespace

Bandwidth::Bandwidth(const std::wstring& text)
{
    Initialize(text.c_str());
}

bool Bandwidth::Initialize(const wchar_t* text)
{
    if (text == nullptr)
        return false;
    try {
        bitsPerSecond = TruncateToUnsigned(LeadingNumber(text) * UnitFactor(ToUpper(text), ParsedUnits));
        return true;
    } catch (...) {
        ReportFailure(LogWarning, L"Error while initializing Bandwidth");
        return false;
    }
}

const wchar_t* Bandwidth::ToString() const
{
    static std::wstring text;
    try {
        FormatQuantity(bitsPerSecond, 1024.0, PrintedUnits, text);
    } catch (...) {
        ReportFailure(LogWarning, L"Error while formatting bandwidth string.");
    }
    return text.c_str();
}

Bandwidth* Bandwidth::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
