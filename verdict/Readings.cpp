#include "verdict/Readings.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>

#include "verdict/text/Text.h"

namespace kel {

namespace {

struct AmountUnit {
    std::string_view name;  // in lower case
    double factor;
    AmountKind kind;
};

constexpr double Kibi = 1024;
constexpr AmountUnit Units[] = {{"", 1, AmountKind::Number},
                                {"b", 1, AmountKind::Bytes},
                                {"kb", Kibi, AmountKind::Bytes},
                                {"mb", Kibi* Kibi, AmountKind::Bytes},
                                {"gb", Kibi* Kibi* Kibi, AmountKind::Bytes},
                                {"tb", Kibi* Kibi* Kibi* Kibi, AmountKind::Bytes},
                                {"hz", 1, AmountKind::Hertz},
                                {"khz", 1e3, AmountKind::Hertz},
                                {"mhz", 1e6, AmountKind::Hertz},
                                {"ghz", 1e9, AmountKind::Hertz},
                                {"bps", 1, AmountKind::BitsPerSecond},
                                {"kbps", Kibi, AmountKind::BitsPerSecond},
                                {"mbps", Kibi* Kibi, AmountKind::BitsPerSecond},
                                {"gbps", Kibi* Kibi* Kibi, AmountKind::BitsPerSecond}};

constexpr std::size_t MaxPart = 18;  // digits of a version's part: what 64 bits always hold
constexpr std::size_t MaxEdge = 5;   // digits
constexpr std::string_view Digits = "0123456789";

/// Takes the digits at its beginning off the text.
std::string_view TakeDigits(std::string_view& text)
{
    const std::string_view digits = text.substr(0, std::min(text.find_first_not_of(Digits), text.size()));
    text.remove_prefix(digits.size());
    return digits;
}

/// Takes a whole number of at most `max` digits off the text; nothing when there is none, or a longer one.
std::optional<std::uint64_t> TakeNumber(std::string_view& text, std::size_t max)
{
    const std::string_view digits = TakeDigits(text);
    std::uint64_t number = 0;
    if (digits.empty() || digits.size() > max)
        return std::nullopt;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

}  // namespace

std::optional<Amount> ParseAmount(std::string_view text)
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
    double amount = 0;
    const char* end = number.data() + number.size();
    const auto read = std::from_chars(number.data(), end, amount, std::chars_format::fixed);
    if (read.ec != std::errc() || read.ptr != end)
        return std::nullopt;
    const std::string name = Lower(Trim(rest));
    const auto* unit =
        std::find_if(std::begin(Units), std::end(Units), [&](const AmountUnit& u) { return u.name == name; });
    if (unit == std::end(Units))
        return std::nullopt;
    return Amount{amount * unit->factor, unit->kind};
}

std::optional<std::vector<std::uint64_t>> ParseVersion(std::string_view text)
{
    text = Trim(text);
    std::vector<std::uint64_t> parts;
    for (;;) {
        const auto part = TakeNumber(text, MaxPart);
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

std::optional<Edges> ParseEdges(std::string_view text)
{
    text = Trim(text);
    const auto width = TakeNumber(text, MaxEdge);
    text = Trim(text);
    if (!width || text.empty() || std::string_view("xX*").find(text.front()) == std::string_view::npos)
        return std::nullopt;
    text = Trim(text.substr(1));
    const auto height = TakeNumber(text, MaxEdge);
    if (!height || *width == 0 || *height == 0)
        return std::nullopt;
    const auto [shorter, longer] = std::minmax({static_cast<int>(*width), static_cast<int>(*height)});
    return Edges{longer, shorter};
}

}  // namespace kel
