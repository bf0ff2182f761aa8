#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "values/SharedText.h"

namespace kel {

/// One group of a groups text; missing parts are empty.
struct GroupEntry {
    std::wstring id;
    std::wstring index;
    SharedText value;
};

/// Walks a groups text with plain, case-sensitive substring searches. It is not an XML reader: attribute
/// order is free, nothing is unescaped, and a group without a value takes the next value in the text; pages
/// rely on that.
class GroupsText {
public:
    /// @param groupsText must outlive this object
    explicit GroupsText(std::wstring_view groupsText);

    /// Reads the next group.
    /// @return false at the end of the groups, or when a group is not closed
    bool Next(GroupEntry& entry);

private:
    /// A word whose next occurrence is searched once and remembered until the walk is past it, so that a
    /// missing word is not searched again for every group.
    class Word {
    public:
        explicit Word(std::wstring_view searchedWord) : word(searchedWord) {}
        std::size_t FindFrom(std::wstring_view searched, std::size_t start);
        std::size_t Length() const { return word.size(); }

    private:
        std::wstring_view word;
        std::size_t next = 0;
        bool isLookedUp = false;
    };

    std::wstring Token(std::size_t name, std::size_t nameLength, std::size_t groupEnd) const;
    const SharedText& ValueAt(std::size_t open);

    std::wstring_view text;
    std::size_t position;
    Word groupOpen{L"<group "};
    Word idName{L"id"};
    Word indexName{L"index"};
    Word valueOpen{L"<value>"};
    Word valueClose{L"</value>"};
    Word groupClose{L"</group>"};
    std::size_t valueStart = std::wstring_view::npos;  // of the value read last
    SharedText value;
};

}  // namespace kel
