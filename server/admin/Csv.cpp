#include "server/admin/Csv.h"

#include <string_view>

namespace kel::server {

std::string CsvRecord(const std::vector<std::string>& cells)
{
    std::string record;
    for (const std::string& cell : cells) {
        if (!record.empty())
            record += ',';
        record += '"';
        if (!cell.empty() && std::string_view("=+-@\t\r\n").find(cell.front()) != std::string_view::npos)
            record += '\'';
        for (const char c : cell)
            record.append(c == '"' ? 2 : 1, c);
        record += '"';
    }
    return record + "\r\n";
}

}  // namespace kel::server
