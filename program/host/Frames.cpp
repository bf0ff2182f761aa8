#include "program/host/Frames.h"

#include <cstdint>
#include <cstring>

namespace kel::program {

namespace {

/// Whether the input had that many bytes.
bool Fill(const ReadBytes& read, char* bytes, std::size_t count)
{
    while (count > 0) {
        const std::size_t got = read(bytes, count);
        if (got == 0)
            return false;
        bytes += got;
        count -= got;
    }
    return true;
}

}  // namespace

std::optional<std::string> ReadFrame(const ReadBytes& read)
{
    std::uint32_t length = 0;
    char bytes[sizeof length];
    if (!Fill(read, bytes, sizeof bytes))
        return std::nullopt;
    std::memcpy(&length, bytes, sizeof length);
    if (length > MaxFrame)
        throw FrameError("a frame of " + std::to_string(length) + " bytes");
    std::string content(length, '\0');
    if (!Fill(read, content.data(), content.size()))
        return std::nullopt;
    return content;
}

std::string MakeFrame(std::string_view content)
{
    const auto length = static_cast<std::uint32_t>(content.size());
    std::string frame(sizeof length, '\0');
    std::memcpy(frame.data(), &length, sizeof length);
    return frame.append(content);
}

}  // namespace kel::program
