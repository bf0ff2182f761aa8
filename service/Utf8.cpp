#include "service/Utf8.h"

#include <windows.h>

#include <limits>
#include <stdexcept>

namespace kel {

namespace {

int CheckedLength(std::size_t length)
{
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::length_error("The text is too long to be converted.");
    return static_cast<int>(length);
}

}  // namespace

std::string ToUtf8(std::wstring_view text)
{
    const int length = CheckedLength(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

std::wstring FromUtf8(std::string_view bytes)
{
    const int length = CheckedLength(bytes.size());
    const int size = MultiByteToWideChar(CP_UTF8, 0, bytes.data(), length, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, bytes.data(), length, text.data(), size);
    return text;
}

}  // namespace kel
