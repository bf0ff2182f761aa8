#pragma once

#include <string>

#include "run/Session.h"
#include "run/SystemValues.h"
#include "run/WantedGroups.h"

namespace kel::test {

/// A session without network and hardware; current as long as it lives.
class TestSession : public Session {
public:
    TestSession() { MakeCurrent(); }

    const std::wstring& SessionID() const override { return sessionID; }
    const std::wstring& ReferrerID() const override { return referrerID; }
    const std::wstring& UserID() const override { return userID; }
    bool IsWanted(const GroupID& group) const override { return wanted.Contains(group); }
    SystemValues& Values() override { return values; }

    std::wstring sessionID = L"session";
    std::wstring referrerID = L"referrer";
    std::wstring userID = L"user";
    WantedGroups wanted;
    SystemValues values;

    /// The text stored under a group number, index 0; "(none)" when there is none.
    std::wstring Text(unsigned number) const
    {
        const SystemValue* value = values.TryGetValue(SystemValueID(GroupID(number)));
        return value != nullptr ? value->Text() : L"(none)";
    }
};

}  // namespace kel::test
