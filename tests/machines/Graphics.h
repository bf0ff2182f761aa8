// The machines in graphics.txt.
#pragma once

#include <fstream>
#include <sstream>

#include "support/FakeGraphics.h"

namespace kel::test {

using Fields = std::vector<std::wstring>;

struct GraphicsMachine {
    std::wstring what, wanted;
    std::wstring calls;  ///< that load a driver
    std::vector<Card> cards;
    std::vector<Fields> devices, notes, settings;
    std::vector<std::wstring> stored;  ///< of each adapter, then of DirectX
};

inline Fields Split(const std::wstring& text)
{
    Fields fields(1);
    for (const wchar_t letter : text) {
        if (letter == L'|')
            fields.emplace_back();
        else
            fields.back() += letter;
    }
    return fields;
}

inline std::vector<GraphicsMachine> ReadGraphicsMachines()
{
    std::vector<GraphicsMachine> machines;
    std::map<std::wstring, Card> cards;
    std::wifstream file(KEL_MACHINES "/graphics.txt");
    for (std::wstring line; std::getline(file, line);) {
        const std::wstring kind = line.substr(0, line.find(L' ')), rest = line.substr(kind.size() + 1);
        const Fields fields = Split(rest);
        const auto number = [&fields](std::size_t place, int base = 16) {
            return std::stoull(fields[place], nullptr, base);
        };
        const auto small = [&number](std::size_t place, int base = 16) {
            return static_cast<UINT>(number(place, base));
        };
        if (kind == L"card")
            cards[fields[0]] = {fields[1], small(2), small(3), small(4),  number(5, 10), number(6, 10),
                                small(7),  small(8), small(9), small(10), small(11, 10), number(12)};
        else if (kind == L"machine")
            machines.push_back({fields[0], fields[1], fields[2], {}, {}, {}, {}, {}});
        else if (kind == L"has")
            std::ranges::transform(fields, std::back_inserter(machines.back().cards),
                                   [&cards](const auto& key) { return cards.at(key); });
        else if (kind == L"device")
            machines.back().devices.push_back(fields);
        else if (kind == L"note")
            machines.back().notes.push_back(fields);
        else if (kind == L"set")
            machines.back().settings.push_back(fields);
        else if (kind == L"stored")
            machines.back().stored.push_back(rest);
    }
    return machines;
}

}  // namespace kel::test
