#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kel {

/// What an amount measures; Number when it has no unit.
enum class AmountKind { Number, Bytes, Hertz, BitsPerSecond };

struct Amount {
    double number = 0;  // in base units
    AmountKind kind = AmountKind::Number;
    double lastDigit = 1;  // the value of a 1 as the text's last digit, in base units
};

/// The ratio between KB, MB, GB and TB: 1024, as the control writes them, or 1000, as disks are sold.
enum class ByteSteps { Binary, Decimal };

/// A dotted version. 9.0C comes after 9.0B and 9.0, and before 9.0.1.
struct DottedVersion {
    std::vector<std::uint64_t> parts;  // without the zeros at its end
    char letter = 0;                   // behind the last part, in lower case; 0 for none

    auto operator<=>(const DottedVersion&) const =
        default;  // NOLINT(modernize-use-nullptr): in what it generates
    std::uint64_t Major() const { return parts.empty() ? 0 : parts.front(); }
};

/// The edges of a screen, in pixels.
struct Edges {
    int longer = 0;
    int shorter = 0;
};

/// A number with or without a unit, such as "7.8 GB", "2400 MHz", "1 Mbps", "4". Nothing for any other text.
std::optional<Amount> ParseAmount(std::string_view text, ByteSteps steps = ByteSteps::Binary);

/// A dotted version such as "8.0.11" or "9.0C". Nothing for any other text.
std::optional<DottedVersion> ParseVersion(std::string_view text);

/// A resolution such as "1280x720", and any text after it. Nothing for any other text, and when an edge is 0.
std::optional<Edges> ParseEdges(std::string_view text);

}  // namespace kel
