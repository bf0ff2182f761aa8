#include "values/Bandwidth.h"

#include <array>
#include <string>

#include "values/Clone.h"
#include "values/Quantity.h"

namespace kel {

namespace {

constexpr std::array<Unit, 3> ParsedBandwidthUnits = {
    {{L"KBPS", 1024.0}, {L"MBPS", 1048576.0}, {L"GBPS", 1073741824.0}}};
constexpr std::array<const wchar_t*, 4> PrintedBandwidthUnits = {L"bps", L"Kbps", L"Mbps", L"Gbps"};

}  // namespace

Bandwidth::Bandwidth(const std::wstring& text)
{
    Initialize(text.c_str());
}

bool Bandwidth::Initialize(const wchar_t* text)
{
    return ReadQuantity(text, ParsedBandwidthUnits, L"Error while initializing Bandwidth", bitsPerSecond);
}

const wchar_t* Bandwidth::ToString() const
{
    static std::wstring text;
    return WriteQuantity(bitsPerSecond, 1024.0, PrintedBandwidthUnits,
                         L"Error while formatting bandwidth string.", text);
}

Bandwidth* Bandwidth::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
