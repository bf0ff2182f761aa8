#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kel {

/// What an amount counts; Number when it has no unit.
enum class AmountKind { Number, Bytes, Hertz, BitsPerSecond };

struct Amount {
    double number = 0;  // in base units
    AmountKind kind = AmountKind::Number;
};

/// The edges of a screen, in pixels.
struct Edges {
    int longer = 0;
    int shorter = 0;
};

/// A number with or without a unit, such as "7.8 GB", "2400 MHz", "1 Mbps", "4". Nothing for any other text.
std::optional<Amount> ParseAmount(std::string_view text);

/// The numbers of a dotted version, without the zeros at its end. Nothing for any other text.
std::optional<std::vector<std::uint64_t>> ParseVersion(std::string_view text);

/// A resolution such as "1280x720", and any text after it. Nothing for any other text, and when an edge is 0.
std::optional<Edges> ParseEdges(std::string_view text);

}  // namespace kel
