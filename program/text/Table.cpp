#include "program/text/Table.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

#include "program/text/Characters.h"

namespace kel::program {

namespace {

constexpr int Gap = 2;        // columns between two texts
constexpr int MinColumn = 5;  // narrower ones cannot be read

void WriteRow(Output& output, const std::vector<Cell>& cells, const std::vector<int>& widths, int indent)
{
    std::vector<std::string_view> rests;
    for (const Cell& cell : cells)
        rests.emplace_back(cell.text);
    do {
        std::string blanks(static_cast<std::size_t>(indent), ' ');
        for (std::size_t column = 0; column < cells.size(); ++column) {
            const std::string_view line = TakeLine(rests[column], widths[column]);
            if (!line.empty()) {  // so that no line ends with blanks
                output.Write(blanks);
                output.Write(line, cells[column].colour);
                blanks.clear();
            }
            blanks.append(static_cast<std::size_t>(std::max(widths[column] - Columns(line), 0) + Gap), ' ');
        }
        output.WriteLine();
    } while (std::any_of(rests.begin(), rests.end(), [](std::string_view rest) { return !rest.empty(); }));
}

}  // namespace

Cell::Cell(const std::string& cellText, Colour cellColour) : text(Printable(cellText)), colour(cellColour) {}

void Table::Write(Output& output, int indent) const
{
    const std::vector<int> widths = FindWidths(output.Width() - indent);
    if (std::any_of(heads.begin(), heads.end(), [](const std::string& head) { return !head.empty(); })) {
        std::vector<Cell> cells;
        for (const std::string& head : heads)
            cells.emplace_back(head, Colour::Strong);
        WriteRow(output, cells, widths, indent);
    }
    for (const std::vector<Cell>& row : rows)
        WriteRow(output, row, widths, indent);
}

std::vector<int> Table::FindWidths(int available) const
{
    std::vector<int> widths;
    for (std::size_t column = 0; column < heads.size(); ++column) {
        int width = Columns(heads[column]);
        for (const std::vector<Cell>& row : rows)
            width = std::max(width, Columns(row[column].text));
        widths.push_back(width);
    }
    const int gaps = Gap * (static_cast<int>(widths.size()) - 1);
    while (std::accumulate(widths.begin(), widths.end(), gaps) > available) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= MinColumn)
            break;
        --*widest;
    }
    return widths;
}

}  // namespace kel::program
