#include "service/PathText.h"

#include <algorithm>
#include <array>

namespace kel {

namespace {

bool IsControlOrBlank(char byte)
{
    const auto code = static_cast<unsigned char>(byte);
    return code < 0x21 || code == 0x7F;
}

bool IsDelimiter(char byte)
{
    // None of these is the second byte of a character in any code page that a system can have.
    constexpr std::string_view Delimiters = "#%&+/;=?";
    return IsControlOrBlank(byte) || Delimiters.find(byte) != std::string_view::npos;
}

/// What is sent for a character.
std::string ToBytes(wchar_t character, UINT codePage)
{
    std::array<char, 16> bytes = {};
    const int count = WideCharToMultiByte(codePage, 0, &character, 1, bytes.data(),
                                          static_cast<int>(bytes.size()), nullptr, nullptr);
    return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : "?";
}

std::wstring Encode(std::string_view bytes)
{
    constexpr std::wstring_view Digits = L"0123456789ABCDEF";
    std::wstring encoded;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        encoded.append({L'%', Digits[byte / 16], Digits[byte % 16]});
    }
    return encoded;
}

}  // namespace

std::wstring PathText(std::wstring_view text, UINT codePage)
{
    std::wstring result;
    for (const wchar_t character : text) {
        const bool isAscii = character < 0x80;
        const std::string bytes =
            isAscii ? std::string(1, static_cast<char>(character)) : ToBytes(character, codePage);
        if (std::ranges::any_of(bytes, isAscii ? &IsControlOrBlank : &IsDelimiter))
            result += Encode(bytes);
        else
            result += character;
    }
    return result;
}

}  // namespace kel
