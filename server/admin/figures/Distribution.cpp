#include "server/admin/figures/Distribution.h"

#include <algorithm>
#include <cmath>

#include "verdict/Readings.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxLabelBytes = 60;  // bytes

/// "8 GB" for a whole power of two.
std::string BytesText(double bytes)
{
    constexpr const char* Units[] = {"B", "KB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    for (; bytes >= 1024 && unit + 1 < std::size(Units); ++unit)
        bytes /= 1024;
    return std::to_string(std::llround(bytes)) + " " + Units[unit];
}

}  // namespace

Distribution::Place Distribution::ToPlace(const std::string& value) const
{
    if (kind == Kind::Text)
        return {0, Shortened(Trim(value), MaxLabelBytes)};
    const auto quantity = ParseAmount(value);
    if (!quantity || quantity->number > 1e18 ||
        (kind == Kind::Bytes) != (quantity->kind == AmountKind::Bytes))
        return {};
    if (kind == Kind::Number)
        return {quantity->number, std::to_string(std::llround(quantity->number))};
    // The system can use a little less than what is installed, so a step includes the amounts below it.
    const double step = std::exp2(std::ceil(std::log2(std::max(quantity->number, 1.0))));
    return {step, "up to " + BytesText(step)};
}

void Distribution::Add(const std::string* value)
{
    const Place place = value ? ToPlace(*value) : Place{};
    if (place.second.empty())
        ++unreported;
    else
        ++counts[place];
}

std::vector<Distribution::Bar> Distribution::Bars() const
{
    std::vector<std::pair<Place, int>> places(counts.begin(), counts.end());
    std::stable_sort(places.begin(), places.end(),
                     [](const auto& left, const auto& right) { return left.second > right.second; });
    int other = 0;
    for (; places.size() > MaxBars; places.pop_back())
        other += places.back().second;
    if (kind != Kind::Text)
        std::sort(places.begin(), places.end());
    std::vector<Bar> bars;
    bars.reserve(places.size() + 2);
    for (const auto& [place, count] : places)
        bars.push_back({place.second, count, false});
    if (other > 0)
        bars.push_back({"other", other, true});
    if (unreported > 0)
        bars.push_back({"not reported", unreported, true});
    return bars;
}

}  // namespace kel::server
