#include "run/store/GroupsText.h"

#include "diag/Log.h"

namespace kel {

namespace {

constexpr std::size_t None = std::wstring_view::npos;
constexpr std::wstring_view Separators = L"<>= '\"";

/// An index as the log shows it: -1 for absent.
long long Shown(std::size_t index)
{
    return index == None ? -1 : static_cast<long long>(index);
}

}  // namespace

GroupsText::GroupsText(std::wstring_view groupsText)
    : text(groupsText), position(groupsText.find(L"<groups>"))
{
}

std::size_t GroupsText::Word::FindFrom(std::wstring_view searched, std::size_t start)
{
    if (!isLookedUp || (next != None && next < start))
        next = searched.find(word, start);
    isLookedUp = true;
    return next;
}

bool GroupsText::Next(GroupEntry& entry)
{
    if (position == None)
        return false;
    const std::size_t group = groupOpen.FindFrom(text, position);
    WriteLog(LogTrace, L"pos = ", Shown(group));
    if (group == None)
        return false;

    // Every search starts at the same place, not at the group just found.
    const std::size_t id = idName.FindFrom(text, position);
    WriteLog(LogTrace, L"id pos= ", Shown(id));
    const std::size_t index = indexName.FindFrom(text, position);
    const std::size_t open = valueOpen.FindFrom(text, position);
    const std::size_t end = groupClose.FindFrom(text, position);
    if (end == None)
        return false;

    entry.id = Token(id, idName.Length(), end);
    entry.index = Token(index, indexName.Length(), end);
    entry.value = ValueAt(open);
    WriteLog(LogTrace, L"id = ", entry.id, L' ', Buffer(entry.value));
    position = end + groupClose.Length();
    return true;
}

std::wstring GroupsText::Token(std::size_t name, std::size_t nameLength, std::size_t groupEnd) const
{
    if (name == None)
        return {};
    // The group's end begins with a separator, so a token that begins in the group also ends there.
    const std::wstring_view group = text.substr(0, groupEnd);
    const std::size_t start = group.find_first_not_of(Separators, name + nameLength);
    if (start == None)
        return {};
    return std::wstring(group.substr(start, group.find_first_of(Separators, start) - start));
}

const SharedText& GroupsText::ValueAt(std::size_t open)
{
    // Groups that take the same value share its text, which may be as long as the whole.
    if (open != valueStart || open == None) {
        const std::size_t close = open == None ? None : valueClose.FindFrom(text, open);
        const std::size_t start = open + valueOpen.Length();
        value = MakeText(close == None ? L"" : std::wstring(text.substr(start, close - start)).c_str());
        valueStart = open;
    }
    return value;
}

}  // namespace kel
