#include "kit/Text.h"

#include "program/files/File.h"
#include "program/text/UserError.h"
#include "service/Utf8.h"
#include "values/Hexadecimal.h"

namespace kel::kit {

namespace {

constexpr std::size_t MaxTableSize = std::size_t{1} << 20;

}  // namespace

std::vector<std::string> SplitFields(std::string_view line, char separator)
{
    std::vector<std::string> fields;
    for (;;) {
        const std::size_t end = line.find(separator);
        fields.emplace_back(line.substr(0, end));
        if (end == std::string_view::npos)
            return fields;
        line.remove_prefix(end + 1);
    }
}

std::vector<std::string> LinesOf(std::string_view text)
{
    std::vector<std::string> lines = SplitFields(text, '\n');
    for (std::string& line : lines) {
        if (line.ends_with('\r'))
            line.pop_back();
    }
    std::erase(lines, "");
    return lines;
}

std::vector<std::vector<std::string>> ReadTable(const std::string& path, std::size_t fieldCount)
{
    std::vector<std::vector<std::string>> rows;
    bool isHead = true;
    for (const std::string& line : LinesOf(program::ReadFile(path, MaxTableSize))) {
        if (line.starts_with('#'))
            continue;
        std::vector<std::string> fields = SplitFields(line, '\t');
        if (fields.size() != fieldCount)
            throw program::UserError(path + " has a row that is not of " + std::to_string(fieldCount) +
                                     " fields: " + line);
        if (!isHead)
            rows.push_back(std::move(fields));
        isHead = false;
    }
    return rows;
}

std::string Hex(std::uint64_t number, int digits)
{
    return ToUtf8(Hexadecimal(number, digits));
}

}  // namespace kel::kit
