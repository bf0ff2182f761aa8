#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace kel::test {

using Text = std::wstring;
using Texts = std::vector<Text>;

/// Makes hostile texts of 0 to some thousand characters out of real ones and pieces of their grammar, put
/// together and mutated at random. The same seed gives the same texts.
struct Generator {
    std::mt19937_64 engine;
    Texts samples, pieces;

    std::size_t Below(std::size_t limit) { return engine() % limit; }
    const Text& AnyOf(const Texts& texts) { return texts[Below(texts.size())]; }

    Text Next()
    {
        Text text = Below(3) == 0 ? L"" : AnyOf(samples), inserted;
        const std::size_t length = Below(64) == 0 ? Below(6000) : Below(2) * Below(60);
        while (inserted.size() < length)
            inserted += Piece();
        text.insert(Below(text.size() + 1), inserted);
        for (std::size_t mutations = Below(5); mutations > 0; --mutations) {
            const std::size_t start = Below(text.size() + 1);
            const std::size_t replaced = Below(8) == 0 ? Text::npos : Below(2) * Below(16);
            text.replace(start, replaced, Below(4) == 0 ? L"" : Piece());
        }
        return text;
    }

    Text Piece()
    {
        // What parsers get wrong: the edges of 16, 32 and 64 bits, and zeros, blanks of all kinds, letters
        // and digits outside ASCII, lone surrogates.
        static const Texts edges = {
            L"65536",      L"-1",         L"2147483648",          L"-2147483649",
            L"4294967295", L"4294967296", L"9223372036854775808", L"18446744073709551615"};
        static const Text nasty(
            L"\0\t\r\n\v\x1A\xA0\x131\x17F\x663\x2003\x212A\x3000\xD800\xDFFF\xFEFF\xFF15", 17);
        const Text choices[] = {AnyOf(pieces),
                                AnyOf(edges),
                                std::to_wstring(engine() >> Below(64)),
                                AnyOf(samples).substr(0, Below(64)),
                                Text(1, nasty[Below(nasty.size())]),
                                Text(Below(2), static_cast<wchar_t>(Below(0x10000)))};
        return choices[Below(2) * Below(std::size(choices))];
    }
};

}  // namespace kel::test
