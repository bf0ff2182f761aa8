#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kel::server {

/// What an amount counts. A number without a unit counts nothing in particular.
enum class Kind { Number, Bytes, Hertz, BitsPerSecond };

struct Quantity {
    double amount = 0;  // in base units
    Kind kind = Kind::Number;
};

/// The edges of a picture, the longer one first.
struct Resolution {
    int longer = 0;
    int shorter = 0;
};

/// A number with or without a unit, such as "7.8 GB", "2400 MHz", "1 Mbps", "4". Nothing for any other text.
std::optional<Quantity> ReadQuantity(std::string_view text);

/// The numbers of a dotted version, without the zeros at its end. Nothing for any other text.
std::optional<std::vector<std::uint64_t>> ReadVersion(std::string_view text);

/// A resolution such as "1280x720", whatever follows it. Nothing for any other text, and when an edge is 0.
std::optional<Resolution> ReadResolution(std::string_view text);

}  // namespace kel::server
