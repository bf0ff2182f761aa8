#pragma once

#include <string>

#include "run/store/GroupID.h"
#include "run/store/SystemValues.h"

namespace kel {

/// The running detection, as far as detectors, requests and the report need it.
class Session {
public:
    Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    virtual ~Session();

    virtual const std::wstring& SessionID() const = 0;
    virtual const std::wstring& ReferrerID() const = 0;
    virtual const std::wstring& UserID() const = 0;

    /// Whether the analysis service asked for the group.
    virtual bool IsWanted(const GroupID& group) const = 0;

    /// The store of the values found so far.
    virtual SystemValues& Values() = 0;

    /// The session made current last.
    /// @throws std::logic_error when there is none
    static Session& Current();

protected:
    /// Makes this the current session until it is destroyed.
    void MakeCurrent();
};

}  // namespace kel
