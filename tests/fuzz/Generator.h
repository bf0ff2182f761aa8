#pragma once

#include <cstdint>
#include <cstdlib>
#include <map>
#include <random>
#include <regex>
#include <string>
#include <vector>

namespace kel::test {

using Text = std::wstring;
using Texts = std::vector<Text>;

/// Bytes as characters, and back.
inline Text Wide(const std::string& bytes)
{
    return {bytes.begin(), bytes.end()};
}

inline std::string Narrow(const Text& text)
{
    return {text.begin(), text.end()};
}

/// A number from the environment, such as KEL_FUZZ_SEED.
inline std::uint64_t Setting(const char* name, std::uint64_t otherwise)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::strtoull(value, nullptr, 10) : otherwise;
}

/// The text of a pattern's group, for each match.
inline Texts All(const Text& text, const Text& pattern)
{
    static std::map<Text, std::wregex> regexes;
    const std::wregex& regex = regexes.try_emplace(pattern, pattern).first->second;
    return {std::wsregex_token_iterator(text.begin(), text.end(), regex, 1), {}};
}

/// Makes hostile texts of 0 to some thousand characters from real ones and pieces of their grammar, joined
/// and mutated at random. The same seed gives the same texts.
struct Generator {
    std::mt19937_64 engine;
    Texts samples, pieces;

    std::size_t Below(std::size_t limit) { return engine() % limit; }
    const Text& AnyOf(const Texts& texts) { return texts[Below(texts.size())]; }

    Text Next()
    {
        Text text = Below(3) == 0 ? L"" : AnyOf(samples);
        const bool isLong = Below(64) == 0;
        for (std::size_t changes = Below(isLong ? 1000 : 8); changes > 0; --changes)
            text.replace(Below(text.size() + 1), isLong ? 0 : Below(2) * Below(16),
                         Below(6) == 0 ? L"" : Piece());
        if (Below(4) == 0)
            text.resize(Below(text.size() + 1));
        return text;
    }

    Text Piece()
    {
        // Typical problems of parsers: the limits of 16, 32 and 64 bits, zeros, blanks of all kinds, letters
        // and digits outside ASCII, lone surrogates.
        static const Texts edges = {L"65536",       L"-1",         L"2147483648",
                                    L"-2147483649", L"4294967296", L"18446744073709551615"};
        static const Text nasty(
            L"\0\t\r\n\v\x1A\xA0\x131\x17F\x663\x2003\x212A\x3000\xD800\xDFFF\xFEFF\xFF15", 17);
        switch (Below(8)) {
            case 0:
                return AnyOf(edges);
            case 1:
                return AnyOf(samples).substr(0, Below(64));
            case 2:
                return Text(1, nasty[Below(nasty.size())]);
            case 3:
                return Text(1, static_cast<wchar_t>(engine()));
            default:
                return AnyOf(pieces);
        }
    }
};

}  // namespace kel::test
