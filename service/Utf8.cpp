#include "service/Utf8.h"

#include <windows.h>

#include <limits>
#include <stdexcept>

namespace kel {

namespace {

int ToLength(std::size_t length)
{
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::length_error("The text is too long to be converted.");
    return static_cast<int>(length);
}

/// @throws std::runtime_error for the size 0, by which a conversion reports failure
int RequireSize(int size)
{
    if (size == 0)
        throw std::runtime_error("The text cannot be converted.");
    return size;
}

}  // namespace

std::string ToUtf8(std::wstring_view text)
{
    const int length = ToLength(text.size());
    if (length == 0)
        return {};
    const int size =
        RequireSize(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr));
    std::string bytes(static_cast<std::size_t>(size), '\0');
    RequireSize(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr));
    return bytes;
}

std::wstring FromUtf8(std::string_view bytes)
{
    const int length = ToLength(bytes.size());
    if (length == 0)
        return {};
    const int size = RequireSize(MultiByteToWideChar(CP_UTF8, 0, bytes.data(), length, nullptr, 0));
    std::wstring text(static_cast<std::size_t>(size), L'\0');
    RequireSize(MultiByteToWideChar(CP_UTF8, 0, bytes.data(), length, text.data(), size));
    return text;
}

}  // namespace kel
