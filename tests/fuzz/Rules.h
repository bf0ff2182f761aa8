#pragma once

#include <charconv>
#include <cmath>
#include <codecvt>
#include <map>
#include <regex>
#include <set>

#include "fuzz/Generator.h"
#include "run/store/GroupID.h"

namespace kel::test {

/// What each parser answers, worked out a second time in the simplest way and shown as one text.
struct Rules {
    static inline const Text Refused = L"(refused)";

    /// What the group of a pattern holds, each time that it matches.
    static Texts All(const Text& text, const Text& pattern)
    {
        static std::map<Text, std::wregex> regexes;
        const std::wregex& regex = regexes.try_emplace(pattern, pattern).first->second;
        return {std::wsregex_token_iterator(text.begin(), text.end(), regex, 1), {}};
    }
    static Text First(const Text& text, const Text& pattern) { return All(text, pattern + L"|$").front(); }
    static Text Inside(const Text& text, const Text& open, const Text& close)
    {
        const std::size_t start = text.find(open), end = text.find(close, start);
        return end == Text::npos ? L"" : text.substr(start + open.size(), end - start - open.size());
    }
    static Text Upper(Text text) { return _wcsupr(text.data()); }

    static Text Groups(const Text& text)
    {
        Text rest = text.substr(std::min(text.find(L"<groups>"), text.size())), shown;
        for (std::size_t end = 0; rest.find(L"<group ") != Text::npos; rest.erase(0, end + 8)) {
            end = rest.find(L"</group>");
            if (end == Text::npos)
                break;
            const Text group = rest.substr(0, end), token = L"[<>= '\"]*([^<>= '\"]+)";
            shown += First(group, L"id" + token) + L"[" + First(group, L"index" + token) + L"]=";
            shown += Inside(rest, L"<value>", L"</value>").c_str() + Text(L";");
        }
        return shown;
    }

    static Text Configuration(const Text& text)
    {
        const auto tag = [&text](const Text& name, const Text& old) {
            const Text value = Inside(text, L"<" + name + L">", L"</" + name + L">");
            return value.empty() ? old : value;
        };
        return tag(L"session_id", L"s") + L"|" + tag(L"user_id", L"u") + L"|" + tag(L"referrer_id", L"r") +
               (tag(L"debug", L"0") == L"0" ? L"|0|" : L"|1|") +
               std::to_wstring(
                   std::clamp(_wcstoi64(tag(L"logging", L"0").c_str(), nullptr, 10), -0x80000000LL, 7LL));
    }

    static Text Version(const Text& text)
    {
        const Text plain = text.c_str(), letter = First(plain, L"([A-Z])$");
        Texts fields = All(plain.substr(0, plain.size() - letter.size()), L"([^.,\\- _]+)");
        fields.resize(4, L"0");
        std::uint64_t packed = 0;
        for (std::size_t field = 0; field < 4; ++field) {
            packed <<= field == 0 ? 0 : 16;
            errno = 0;
            const std::uint64_t number = std::wcstoull(fields[field].c_str(), nullptr, 10);
            if (First(fields[field], L"^\\+?([0-9]+)$").empty() || errno != 0)
                return std::to_wstring(packed);
            packed |= number;
        }
        return std::to_wstring(packed + letter.c_str()[0]);
    }

    /// @param unitNames smallest first; in upper case they are the words that a text may hold
    static Text Quantity(const Text& text, bool hasExponent, double step, const Text& unitNames)
    {
        const Texts units = All(unitNames, L"([^ ]+)");
        const Text exponent = hasExponent ? L"(?:[eE][+-]?[0-9]*)?)" : L")";
        const Text plain = text.c_str(), number = First(plain, L"^\\s*([+-]?[0-9]*[.]?[0-9]*" + exponent);
        wchar_t* end = nullptr;
        double amount = std::wcstod(number.c_str(), &end), factor = 1;
        for (std::size_t unit = units.size() - 1; unit > 0; --unit)
            factor = Upper(plain).find(Upper(units[unit])) != Text::npos ? std::pow(step, unit) : factor;
        amount = *end != 0 ? 0 : std::max(amount * factor, 0.0);
        const auto value = amount < 0x1p64 ? static_cast<std::uint64_t>(amount) : UINT64_MAX;
        auto shown = static_cast<double>(value);
        std::size_t unit = 0;
        for (; shown >= step && unit + 1 < units.size(); ++unit)
            shown /= step;
        char digits[32];
        char* const last = std::to_chars(digits, std::end(digits), shown, std::chars_format::fixed, 1).ptr;
        return std::to_wstring(value) + L"=" + Text(&digits[0], last) + L" " + units[unit];
    }

    static Text DeviceID(const Text& text)
    {
        const Text id = Upper(First(text.c_str(), L"^([^\\\\]*(?:\\\\[^\\\\]*)?)"));
        const Text isAcpi = First(id, L"^(ACPI\\\\|\\*[^\\\\]*$)");
        const Text maker = L"[A-Z0-9]{3,4}", device = L"[0-9A-F]{4}";
        const Text vendor = First(id, L"^(?:ACPI\\\\|\\*)(" + maker + L")" + device + L"$");
        if (!vendor.empty())
            return id + L"|" + vendor + L"|" + id.substr(id.size() - 4) + L"||";
        const Text parts = L"&" + First(id, L"^(?:[^\\\\]*\\\\|\\*?)([^\\\\]*)$") + L"&";
        const auto last = [&parts](const Text& names, const Text& digits) {
            return L"|" + First(parts, L"^[^]*&(?:" + names + L")_(" + digits + L")&");
        };
        return id + last(L"VEN|VID", isAcpi.empty() ? device : maker) + last(L"DEV|PID", device) +
               last(L"SUBSYS", device + device) + last(L"REV", L"[0-9A-F]{2}|" + device);
    }

    static Text Script(const Text& text)
    {
        Texts tokens = All(text, L"('(?:[^']|'')*'?|[^ \\t\\r\\n]+)");
        tokens.resize(tokens.size() + 4);  // empty ones mark the end
        if ((tokens[0] != L"HKCR" && tokens[0] != L"HKEY_CLASSES_ROOT") || tokens[1] != L"{")
            return Refused;
        std::vector<std::pair<Text, Text>> open(1);  // the values and the keys of each key that is not closed
        for (std::size_t at = 2; open.size() <= 32;) {
            if (tokens[at] == L"}") {
                const Text body = open.back().first + open.back().second + L"}";
                open.pop_back();
                if (open.empty())
                    return tokens[at + 1].empty() ? body : Refused;
                open.back().second += body;
                ++at;
                continue;
            }
            const Text rule = First(tokens[at], L"^(val|NoRemove|ForceRemove|Delete)$");
            const bool isValue = rule == L"val";
            at += rule.empty() ? 0 : 1;
            const bool hasData = tokens[at + 1] == L"=";
            const Text name = Plain(tokens[at]), data = hasData ? Data(tokens[at + 2], tokens[at + 3]) : L"";
            if (name.empty() || (data.empty() && (hasData || isValue)) || (isValue && open.size() == 1))
                return Refused;
            Text& shown = isValue ? open.back().first : open.back().second;
            at += hasData ? 4 : 1;
            shown += rule + L" " + name + data + L"{";
            if (isValue || tokens[at] != L"{")
                shown += L"}";
            else if (++at)
                open.emplace_back();
        }
        return Refused;
    }
    /// What a name or a text stands for; empty for punctuation and where a closing quote is missing.
    static Text Plain(const Text& token)
    {
        static const std::wregex quotes(L"''");
        const Text quoted = First(token, L"^'((?:[^']|'')*)'$");
        return quoted.empty() ? First(token, L"^([^'{}=][^]*|[{}=][^]+)$")
                              : std::regex_replace(quoted, quotes, L"'");
    }
    static Text Data(const Text& type, const Text& token)
    {
        const Text plain = Plain(token), decimal = First(plain, L"^([0-9]+)$");
        const Text digits = decimal + First(plain, L"^(?:&H|0x)([0-9A-Fa-f]+)$");
        const auto number = std::wcstoull(digits.c_str(), nullptr, decimal.empty() ? 16 : 10);
        if (type == L"s")
            return plain.empty() && token != L"''" ? L"" : L"='" + plain;
        return type != L"d" || digits.empty() || number > UINT32_MAX ? L"" : L"=" + std::to_wstring(number);
    }

    /// Wine drops what follows a lead byte at the very end, so every answer ends in this.
    static inline const Text End = L"||||";
    static Text ServiceAnswer(const Text& answer)
    {
        const Text bytes = answer + End;
        static std::wstring_convert<std::codecvt_utf8_utf16<wchar_t>> utf8("", L"");  // empty for no UTF-8
        Text text, character;
        for (std::size_t at = 0, length = 0; at < bytes.size(); at += length) {
            for (character.clear(), length = 0; character.empty() && length < 4;)
                character = utf8.from_bytes(Bytes(bytes.substr(at, ++length)));
            const bool isNone =
                character.empty() || (character.size() == 1 && (character[0] & 0xF800) == 0xD800);
            length = isNone ? 1 : length;
            text += isNone ? L"\xFFFD" : character;
        }
        std::set<unsigned> wanted;
        for (const Text& id : All(text, L"([^|,]+)"))
            wanted.insert(GroupID(id).Number());
        return Wanted(text, [&wanted](const Text& id) { return wanted.contains(GroupID(id).Number()); });
    }
    static std::string Bytes(const Text& text) { return {text.begin(), text.end()}; }
    /// The text, with replacement characters in a row as one, and which of the numbers in it are wanted.
    template <typename Predicate>
    static Text Wanted(const Text& text, Predicate isWanted)
    {
        static const std::wregex replacements(L"\xFFFD+");
        Text shown = std::regex_replace(text, replacements, L"\xFFFD");
        for (const Text& number : All(text, L"(-?[0-9]+)"))
            shown += isWanted(number) ? L"|yes" : L"|no";
        return shown;
    }
};

}  // namespace kel::test
