#include "server/admin/kit/Texts.h"

#include <array>
#include <cstdio>
#include <ctime>

#include "server/admin/kit/Form.h"

namespace kel::server {

namespace {

constexpr std::int64_t Second = 1000;

std::string Format(std::int64_t time, const char* format)
{
    const std::time_t seconds = time / Second;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 40> text{};
    return {text.data(), std::strftime(text.data(), text.size(), format, &parts)};
}

}  // namespace

std::string TimeText(std::int64_t time)
{
    return Format(time, "%Y-%m-%d %H:%M:%S");
}

std::string IsoTime(std::int64_t time)
{
    const std::string milliseconds = std::to_string(Second + time % Second).substr(1);  // with leading zeros
    return Format(time, "%Y-%m-%dT%H:%M:%S.") + milliseconds + 'Z';
}

std::string DayText(std::int64_t time)
{
    return Format(time, "%Y-%m-%d");
}

std::optional<std::int64_t> ParseDay(std::string_view text)
{
    if (text.size() != 10 || text[4] != '-' || text[7] != '-')
        return std::nullopt;
    std::tm parts{};
    parts.tm_year = static_cast<int>(WholeNumber(text.substr(0, 4))) - 1900;
    parts.tm_mon = static_cast<int>(WholeNumber(text.substr(5, 2))) - 1;
    parts.tm_mday = static_cast<int>(WholeNumber(text.substr(8)));
    const std::int64_t time = std::int64_t{timegm(&parts)} * Second;
    // The 31st of a shorter month, and a text that is not a number, would be another day.
    return time >= 0 && DayText(time) == text ? std::optional(time) : std::nullopt;
}

std::string UrlEncode(std::string_view text)
{
    std::string encoded;
    for (const char c : text) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
            c == '_') {
            encoded += c;
        } else {
            std::array<char, 4> code{};
            std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned char>(c));
            encoded += code.data();
        }
    }
    return encoded;
}

std::string Grouped(std::int64_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3;)
        text.insert(place -= 3, ",");
    return text;
}

int Percent(std::int64_t part, std::int64_t whole)
{
    return static_cast<int>((part * 200 / whole + 1) / 2);
}

std::string Percentage(std::int64_t part, std::int64_t whole)
{
    return whole == 0 ? "–" : std::to_string(Percent(part, whole)) + " %";
}

}  // namespace kel::server
