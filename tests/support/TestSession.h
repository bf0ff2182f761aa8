#pragma once

#include <string>
#include <vector>

#include "run/WantedGroups.h"
#include "run/store/Session.h"
#include "run/store/SystemValues.h"

namespace kel::test {

/// A session without network and hardware, which is current while it exists.
class TestSession : public Session {
public:
    TestSession() { MakeCurrent(); }

    const std::wstring& SessionID() const override { return sessionID; }
    const std::wstring& ReferrerID() const override { return referrerID; }
    const std::wstring& UserID() const override { return userID; }
    bool IsWanted(const GroupID& group) const override { return wanted.Contains(group); }
    SystemValues& Values() override { return values; }

    std::wstring sessionID = L"session", referrerID = L"referrer", userID = L"user";
    WantedGroups wanted;
    SystemValues values;

    /// The text stored under a group number, index 0; "(none)" when there is none.
    std::wstring Text(unsigned number) const
    {
        const SystemValue* value = values.TryGetValue(SystemValueID(GroupID(number)));
        return value != nullptr ? value->Text() : L"(none)";
    }

    /// The same for several numbers, each with a bar after it.
    std::wstring Texts(std::initializer_list<unsigned> numbers) const
    {
        std::wstring texts;
        for (const unsigned number : numbers)
            texts += Text(number) + L"|";
        return texts;
    }

    /// Why the value under a group number, index 0, is empty; "(a text)" when it is not.
    std::wstring Why(unsigned number) const
    {
        const std::optional<Reason> reason = values.FindReason(SystemValueID(GroupID(number)));
        return reason ? reason->ToString() : L"(a text)";
    }

    /// The values stored under the numbers of a range, in the store's order, as "number[index]=text" lines.
    std::vector<std::wstring> Lines(unsigned first, unsigned last) const
    {
        std::vector<std::wstring> lines;
        for (const SystemValue& value : values) {
            const unsigned number = value.ID().Group().Number();
            if (number >= first && number <= last)
                lines.push_back(std::to_wstring(number) + L"[" + std::to_wstring(value.ID().Index()) + L"]=" +
                                value.Text());
        }
        return lines;
    }

    /// The group numbers of all values, in the store's order.
    std::vector<unsigned> Numbers() const
    {
        std::vector<unsigned> numbers;
        for (const SystemValue& value : values)
            numbers.push_back(value.ID().Group().Number());
        return numbers;
    }
};

}  // namespace kel::test
