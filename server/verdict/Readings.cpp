#include "server/verdict/Readings.h"

#include <algorithm>
#include <charconv>

#include "server/base/Text.h"

namespace kel::server {

namespace {

struct Unit {
    std::string_view name;  // in lower case
    double factor;
    Kind kind;
};

constexpr double Kibi = 1024;
constexpr Unit Units[] = {{"", 1, Kind::Number},
                          {"b", 1, Kind::Bytes},
                          {"kb", Kibi, Kind::Bytes},
                          {"mb", Kibi* Kibi, Kind::Bytes},
                          {"gb", Kibi* Kibi* Kibi, Kind::Bytes},
                          {"tb", Kibi* Kibi* Kibi* Kibi, Kind::Bytes},
                          {"hz", 1, Kind::Hertz},
                          {"khz", 1e3, Kind::Hertz},
                          {"mhz", 1e6, Kind::Hertz},
                          {"ghz", 1e9, Kind::Hertz},
                          {"bps", 1, Kind::BitsPerSecond},
                          {"kbps", Kibi, Kind::BitsPerSecond},
                          {"mbps", Kibi* Kibi, Kind::BitsPerSecond},
                          {"gbps", Kibi* Kibi* Kibi, Kind::BitsPerSecond}};

constexpr std::size_t LongestPart = 18;  // digits of a version's part: what 64 bits always hold
constexpr std::size_t LongestEdge = 5;   // digits
constexpr std::string_view Digits = "0123456789";

/// Takes the digits at the beginning off the text.
std::string_view TakeDigits(std::string_view& text)
{
    const std::string_view digits = text.substr(0, std::min(text.find_first_not_of(Digits), text.size()));
    text.remove_prefix(digits.size());
    return digits;
}

/// Takes a whole number of so many digits at most off the text; nothing when it has none, or a longer one.
std::optional<std::uint64_t> TakeNumber(std::string_view& text, std::size_t longest)
{
    const std::string_view digits = TakeDigits(text);
    std::uint64_t number = 0;
    if (digits.empty() || digits.size() > longest)
        return std::nullopt;
    std::from_chars(digits.begin(), digits.end(), number);
    return number;
}

}  // namespace

std::optional<Quantity> ReadQuantity(std::string_view text)
{
    text = Trim(text);
    std::string_view rest = text;
    if (TakeDigits(rest).empty())
        return std::nullopt;
    if (rest.starts_with('.')) {
        rest.remove_prefix(1);
        if (TakeDigits(rest).empty())
            return std::nullopt;
    }
    const std::string_view number = text.substr(0, text.size() - rest.size());
    Quantity quantity;
    const auto read =
        std::from_chars(number.begin(), number.end(), quantity.amount, std::chars_format::fixed);
    if (read.ec != std::errc() || read.ptr != number.end())
        return std::nullopt;
    const std::string name = Lower(Trim(rest));
    const auto* unit =
        std::find_if(std::begin(Units), std::end(Units), [&](const Unit& u) { return u.name == name; });
    if (unit == std::end(Units))
        return std::nullopt;
    return Quantity{quantity.amount * unit->factor, unit->kind};
}

std::optional<std::vector<std::uint64_t>> ReadVersion(std::string_view text)
{
    text = Trim(text);
    std::vector<std::uint64_t> parts;
    for (;;) {
        const auto part = TakeNumber(text, LongestPart);
        if (!part)
            return std::nullopt;
        parts.push_back(*part);
        if (text.empty())
            break;
        if (!text.starts_with('.'))
            return std::nullopt;
        text.remove_prefix(1);
    }
    while (!parts.empty() && parts.back() == 0)
        parts.pop_back();
    return parts;
}

std::optional<Resolution> ReadResolution(std::string_view text)
{
    text = Trim(text);
    const auto width = TakeNumber(text, LongestEdge);
    text = Trim(text);
    if (!width || text.empty() || std::string_view("xX*").find(text.front()) == std::string_view::npos)
        return std::nullopt;
    text = Trim(text.substr(1));
    const auto height = TakeNumber(text, LongestEdge);
    if (!height || *width == 0 || *height == 0)
        return std::nullopt;
    const auto [shorter, longer] = std::minmax({static_cast<int>(*width), static_cast<int>(*height)});
    return Resolution{longer, shorter};
}

}  // namespace kel::server
