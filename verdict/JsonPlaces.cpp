#include "verdict/JsonPlaces.h"

#include <algorithm>
#include <set>

namespace kel {

namespace {

constexpr std::size_t MaxDepth = 8;

struct JsonEvent {
    std::size_t depth;      // of the entry; 0 in the outermost object
    std::string_view name;  // or the number in a list
    std::size_t place;      // of the first character
    bool isMember, isFirst, isEnd;
};

/// The place behind the text that begins with the quote at `start`.
std::size_t EndOfText(std::string_view text, std::size_t start)
{
    for (std::size_t i = start + 1; i < text.size(); ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == '"')
            return i + 1;
    }
    return text.size();
}

/// Passes each entry, and the end of each object and list, to `use` until it returns false.
void ScanJson(std::string_view text, const std::function<bool(const JsonEvent&)>& use)
{
    struct Level {
        bool isList;
        std::size_t count = 0;
        bool awaitsEntry = true;
    };
    std::vector<Level> levels;
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        const std::size_t depth = levels.empty() ? 0 : levels.size() - 1;
        const bool isEnd = c == '}' || c == ']';
        const std::size_t next = c == '"' ? EndOfText(text, i) : i + 1;
        if (isEnd && !levels.empty()) {
            if (!use({depth, {}, i, false, false, true}))
                return;
            levels.pop_back();
        } else if (c == ',' && !levels.empty()) {
            levels.back().awaitsEntry = true;
        } else if (!levels.empty() && levels.back().awaitsEntry && c != ' ' && c != '\t' && c != '\n' &&
                   c != '\r') {
            Level& level = levels.back();
            level.awaitsEntry = false;
            const std::string number = std::to_string(level.count);
            const std::string_view name =
                level.isList ? std::string_view(number) : text.substr(i + 1, std::max(next, i + 2) - i - 2);
            if (!use({depth, name, i, !level.isList, level.count == 0, false}))
                return;
            ++level.count;
        }
        if (c == '{' || c == '[')
            levels.push_back({c == '['});
        i = next;
    }
}

int LineOf(std::string_view text, std::size_t place)
{
    return 1 + static_cast<int>(
                   std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
}

}  // namespace

JsonPlace FindJsonPlace(std::string_view text, const JsonPath& path)
{
    std::size_t matched = 0, best = 0, place = 0;  // entries of the path
    ScanJson(text, [&](const JsonEvent& event) {
        if (event.isEnd || event.depth > matched)
            return true;
        matched = event.depth;
        if (matched < path.size() && event.name == path[matched] && ++matched > best) {
            best = matched;
            place = event.place;
        }
        return best < path.size();
    });
    return {LineOf(text, place), best == path.size()};
}

std::optional<RepeatedName> FindRepeatedName(std::string_view text)
{
    std::optional<RepeatedName> repeated;
    std::set<std::string_view> names[MaxDepth];
    ScanJson(text, [&](const JsonEvent& event) {
        if (event.isEnd || !event.isMember || event.depth >= MaxDepth)
            return true;
        if (event.isFirst)
            names[event.depth].clear();
        if (!names[event.depth].insert(event.name).second)
            repeated = {std::string(event.name), LineOf(text, event.place)};
        return !repeated;
    });
    return repeated;
}

std::optional<JsonListEnd> FindListEnd(std::string_view text, std::string_view name)
{
    std::optional<JsonListEnd> end;
    bool isInside = false, isEmpty = true;
    ScanJson(text, [&](const JsonEvent& event) {
        if (event.depth == 0 && !event.isEnd)
            isInside = event.name == name;
        isEmpty = isEmpty && !(isInside && event.depth == 1 && !event.isEnd);
        if (isInside && event.depth == 1 && event.isEnd)
            end = {text.find_last_not_of(" \t\r\n", event.place - 1) + 1, isEmpty};
        return !end;
    });
    return end;
}

std::vector<int> FindListLines(std::string_view text, std::string_view name)
{
    std::vector<int> lines;
    bool isInside = false;
    std::size_t counted = 0;  // the place up to which line ends are counted
    int line = 1;
    ScanJson(text, [&](const JsonEvent& event) {
        if (event.depth == 0 && !event.isEnd)
            isInside = event.name == name;
        if (isInside && event.depth == 1 && !event.isEnd) {
            line += LineOf(text.substr(counted), event.place - counted) - 1;
            counted = event.place;
            lines.push_back(line);
        }
        return true;
    });
    return lines;
}

}  // namespace kel
