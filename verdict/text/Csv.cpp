#include "verdict/text/Csv.h"

#include <algorithm>
#include <string_view>

namespace kel {

namespace {

constexpr std::string_view OtherSeparators = ";\t\r\n";
// Some spreadsheets treat full-width signs like the usual ones.
constexpr std::string_view FormulaSigns[] = {"=", "+", "-", "@", "＝", "＋", "－", "＠"};

/// Whether a spreadsheet could compute a cell that begins this way. Some readers do so even after blanks and
/// quotes.
bool BeginsFormula(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \""), text.size()));
    return std::any_of(std::begin(FormulaSigns), std::end(FormulaSigns),
                       [=](std::string_view sign) { return text.starts_with(sign); });
}

}  // namespace

std::string CsvRecord(const std::vector<std::string>& cells)
{
    std::string record;
    for (const std::string& cell : cells) {
        if (!record.empty())
            record += ',';
        record += '"';
        if (!cell.empty() && std::string_view("\t\r\n").find(cell.front()) != std::string_view::npos)
            record += '\'';
        bool isBegin = true;
        for (std::string_view rest = cell; !rest.empty(); rest.remove_prefix(1)) {
            if (isBegin && BeginsFormula(rest))
                record += '\'';
            record.append(rest.front() == '"' ? 2 : 1, rest.front());
            isBegin = OtherSeparators.find(rest.front()) != std::string_view::npos;
        }
        record += '"';
    }
    return record + "\r\n";
}

}  // namespace kel
