#pragma once

#include <string>
#include <vector>

#include "server/admin/kit/Html.h"

namespace kel::server {

/// A table whose rows become cards on a narrow screen. The first cell of a row is its heading.
class Table {
public:
    struct Column {
        std::string name;
        bool isNumber = false;
    };

    /// `kind` is a class of the style sheet: "dense" puts the cells of a card side by side.
    Table(std::string caption, std::vector<Column> columns, std::string kind = "");

    /// A cell for each column.
    void Add(const std::vector<Html>& cells);
    /// The table, or a sentence instead when it has no rows.
    Html Done(const Html& whenEmpty) const;

private:
    std::string caption, kind;
    std::vector<Column> columns;
    Html rows;
};

}  // namespace kel::server
