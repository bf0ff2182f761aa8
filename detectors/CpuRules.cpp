#include "detectors/CpuRules.h"

#include <cstdint>

#include "values/Quantity.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr std::size_t RatingDigits = 4;
constexpr int LowestRating = 1000;

/// The last rating such as 3000 in a name, in megahertz; 0 when there is none.
std::uint64_t RatingInName(const std::wstring& name)
{
    std::uint64_t rating = 0;
    for (std::size_t position = 1; position < name.size(); ++position) {
        if (name[position] < L'0' || name[position] > L'9')
            continue;
        const int number = ToInteger(name.substr(position, RatingDigits));
        if (number >= LowestRating)
            rating = static_cast<std::uint64_t>(number);
    }
    return rating;
}

std::wstring RatedSpeed(const CpuInfo& info)
{
    const std::uint64_t speed = info.speed.Hertz();
    const std::uint64_t rating = info.isAmd ? RatingInName(info.name) : 0;
    std::uint64_t rated = rating != 0 ? rating * 1000000 : speed;
    if (info.multiProcessor)
        rated = TruncateToUnsigned(static_cast<double>(rated) * 1.5);
    return rated > speed ? std::to_wstring(rated) + L"Hz" : std::wstring();
}

/// A hypervisor hides from its guests, and from its host system, that the firmware has virtualization on.
std::optional<bool> IsVirtualizationOn(const CpuInfo& info)
{
    const bool isOn = info.hasHypervisor.value_or(false) || info.firmwareVirtualizes.value_or(false);
    return isOn || (info.hasHypervisor && info.firmwareVirtualizes) ? std::optional(isOn) : std::nullopt;
}

}  // namespace

void FinishCpuInfo(CpuInfo& info)
{
    info.name = CollapseBlanks(info.name);
    const std::wstring rated = RatedSpeed(info);
    if (!rated.empty())
        info.ratedSpeed = rated;
    info.isVirtualizationOn = IsVirtualizationOn(info);
}

}  // namespace kel
