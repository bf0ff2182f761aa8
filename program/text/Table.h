#pragma once

#include <string>
#include <vector>

#include "program/text/Output.h"

namespace kel::program {

/// A text of a table, and how a console shows it.
struct Cell {
    Cell(const std::string& cellText, Colour cellColour = Colour::Plain);

    std::string text;  // printable
    Colour colour;
};

/// Rows of columns, which are as wide as their longest text, or narrower where the line is short: then the
/// texts of the widest columns are wrapped.
class Table {
public:
    /// @param columnHeads one for each column; all empty for a table without a head
    explicit Table(std::vector<std::string> columnHeads) : heads(std::move(columnHeads)) {}

    /// @param cells one for each column
    void AddRow(std::vector<Cell> cells) { rows.push_back(std::move(cells)); }

    bool IsEmpty() const { return rows.empty(); }

    /// Writes the table, each line with this many blanks before it.
    void Write(Output& output, int indent = 0) const;

private:
    std::vector<int> FindWidths(int available) const;

    std::vector<std::string> heads;
    std::vector<std::vector<Cell>> rows;
};

}  // namespace kel::program
