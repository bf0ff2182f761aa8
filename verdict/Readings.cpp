#include "verdict/Readings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string>

#include "verdict/text/Text.h"

namespace kel {

namespace {

struct AmountUnit {
    std::string_view name;  // in lower case
    AmountKind kind;
    int power;  // of the steps of its kind
};

constexpr AmountUnit Units[] = {{"", AmountKind::Number, 0},
                                {"b", AmountKind::Bytes, 0},
                                {"kb", AmountKind::Bytes, 1},
                                {"mb", AmountKind::Bytes, 2},
                                {"gb", AmountKind::Bytes, 3},
                                {"tb", AmountKind::Bytes, 4},
                                {"hz", AmountKind::Hertz, 0},
                                {"khz", AmountKind::Hertz, 1},
                                {"mhz", AmountKind::Hertz, 2},
                                {"ghz", AmountKind::Hertz, 3},
                                {"bps", AmountKind::BitsPerSecond, 0},
                                {"kbps", AmountKind::BitsPerSecond, 1},
                                {"mbps", AmountKind::BitsPerSecond, 2},
                                {"gbps", AmountKind::BitsPerSecond, 3}};

/// The size of a unit in base units.
double Factor(const AmountUnit& unit, ByteSteps steps)
{
    const bool isDecimal =
        unit.kind == AmountKind::Hertz || (unit.kind == AmountKind::Bytes && steps == ByteSteps::Decimal);
    double factor = 1;
    for (int i = 0; i < unit.power; ++i)
        factor *= isDecimal ? 1000 : 1024;
    return factor;
}

constexpr std::size_t MaxPart = 18;  // digits of a version's part that always fit into 64 bits
constexpr std::size_t MaxEdge = 5;   // digits
constexpr std::string_view Digits = "0123456789";

/// Removes the digits at the beginning of the text and returns them.
std::string_view TakeDigits(std::string_view& text)
{
    const std::string_view digits = text.substr(0, std::min(text.find_first_not_of(Digits), text.size()));
    text.remove_prefix(digits.size());
    return digits;
}

/// Removes a whole number of at most `max` digits from the beginning of the text and returns it; nothing when
/// there is none, or a longer one.
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

std::optional<Amount> ParseAmount(std::string_view text, ByteSteps steps)
{
    text = Trim(text);
    std::string_view rest = text;
    if (TakeDigits(rest).empty())
        return std::nullopt;
    double lastDigit = 1;
    if (rest.starts_with('.')) {
        rest.remove_prefix(1);
        const std::string_view decimals = TakeDigits(rest);
        if (decimals.empty())
            return std::nullopt;
        lastDigit = std::pow(10, -static_cast<double>(decimals.size()));
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
    const double factor = Factor(*unit, steps);
    return Amount{amount * factor, unit->kind, lastDigit * factor};
}

std::optional<DottedVersion> ParseVersion(std::string_view text)
{
    text = Trim(text);
    DottedVersion version;
    for (;;) {
        const auto part = TakeNumber(text, MaxPart);
        if (!part)
            return std::nullopt;
        version.parts.push_back(*part);
        if (!text.starts_with('.'))
            break;
        text.remove_prefix(1);
    }
    if (const std::string letter = Lower(text); letter.size() == 1 && letter >= "a" && letter <= "z")
        version.letter = letter.front();
    else if (!text.empty())
        return std::nullopt;
    while (!version.parts.empty() && version.parts.back() == 0)
        version.parts.pop_back();
    return version;
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
