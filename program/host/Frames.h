// The frames of native messaging: a length of 32 bits in the machine's byte order, and as many bytes of JSON.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kel::program {

/// The input cannot be divided into frames any more.
class FrameError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

constexpr std::size_t MaxFrame = 4096;          // bytes of a frame that is read
constexpr std::size_t MaxAnswer = 1024 * 1024;  // bytes of one that is written, which browsers accept

/// Reads up to that many bytes, and returns their number; 0 at the end of the input.
using ReadBytes = std::function<std::size_t(char* bytes, std::size_t count)>;

/// The content of the next frame. Nothing at the end of the input, also where that is within a frame.
/// @throws FrameError for a frame of more than MaxFrame bytes
std::optional<std::string> ReadFrame(const ReadBytes& read);

/// A frame with that content.
/// @param content of at most MaxAnswer bytes
std::string MakeFrame(std::string_view content);

}  // namespace kel::program
