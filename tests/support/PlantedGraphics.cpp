#include "support/PlantedGraphics.h"

#include "probes/graphics/AdapterCache.h"
#include "probes/setup/SetupLib.h"

namespace kel::test {

namespace {

std::optional<bool> YesNo(const std::wstring& field)
{
    return field.empty() ? std::nullopt : std::optional(field == L"yes");
}

/// The described cards that the machine has, in its order.
std::vector<Card> CardsOf(const Machine& machine)
{
    std::map<std::wstring, Card> known;
    for (const std::wstring& line : machine[L"card"]) {
        const Lines fields = FieldsOf(line, 16);
        const auto number = [&fields](std::size_t place, int base = 16) {
            return static_cast<UINT>(NumberOf(fields[place], base));
        };
        known[fields[0]] = {fields[1],         number(2),         number(3),      number(4),
                            number(5, 10),     number(6, 10),     number(7),      number(8),
                            number(9),         number(10),        number(11, 10), NumberOf(fields[12], 16),
                            YesNo(fields[13]), YesNo(fields[14]), number(15, 10)};
    }
    std::vector<Card> cards;
    for (const std::wstring& key : Split(machine.First(L"has"), L'|'))
        cards.push_back(known.at(key));
    return cards;
}

}  // namespace

PlantedGraphics::PlantedGraphics(const Machine& machine)
    : fake(CardsOf(machine)),
      adapters({dxgi, &ReadAdapterCache, [](auto& listed) { SetupLib::Instance().GetGpuInfo(listed); },
                directX8, directX9, directX10, directX11, directX12, dxDiag, functions})
{
    for (const std::wstring& line : machine[L"set"]) {
        const std::size_t bar = line.find(L'|');
        fake.Set(line.substr(0, bar), line.substr(bar + 1));
    }
    if (!machine[L"reversed"].empty())
        fake.Set(L"reversed", L"");
}

}  // namespace kel::test
