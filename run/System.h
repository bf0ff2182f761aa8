#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "detectors/Components.h"
#include "run/RequestInterval.h"
#include "run/WantedGroups.h"
#include "run/store/Session.h"
#include "run/store/SystemValues.h"

namespace kel {

/// The one detection session of the process: the page's identifiers, the wanted groups, the detectors and the
/// store. Not locked: the apartments that use the control take turns.
class System : public Session {
public:
    /// The session of the process, made on first use and never destroyed.
    static System& Instance();

    System();

    /// Gives the session a fresh random identifier. Called by the constructor.
    void Initialize();

    /// Reads the tags debug, session_id, user_id, referrer_id and logging from a configuration text. Fields
    /// without a tag keep their values.
    void SetConfiguration(const std::wstring& text);

    /// Stores the identifiers, fetches the wanted groups when they are due, examines the machine (once per
    /// process), and uploads the report when it is due; a request that could not begin stays due. Groups that
    /// are fetched later do not start a detector again: values that it reads only when they are wanted stay
    /// empty. A page may call again while a detector waits: such a
    /// call only stores the identifiers, and leaves the upload to the run in progress.
    /// @throws any exception of a step; the control's members catch it
    void Detect();

    /// Asks the service which groups it wants for the referrer, unless that was done: the first step of
    /// Detect.
    /// @return the answer, whatever it is; empty without one, and when the groups are known
    std::wstring FetchWantedGroups();

    /// Whether the service has answered the last request for the wanted groups.
    bool HasWantedGroups() const { return wanted.AreAnswered(); }

    /// Examines the machine (once per process) without any exchange with the service: these groups count as
    /// wanted, no identifier is stored and nothing is uploaded.
    void DetectLocally(std::vector<unsigned> groups);

    /// Keeps a non-empty text only. Wanted groups that the service did not send are due at once.
    void SetReferrerID(const std::wstring& text);
    /// The same, and makes the next upload due at once.
    void SetSessionID(const std::wstring& text);
    void SetUserID(const std::wstring& text) { userID = text; }
    void SetDebug(const std::wstring& text) { debug = text; }

    const std::wstring& SessionID() const override { return sessionID; }
    const std::wstring& ReferrerID() const override { return referrerID; }
    const std::wstring& UserID() const override { return userID; }
    bool IsWanted(const GroupID& group) const override { return wanted.Contains(group); }
    SystemValues& Values() override { return values; }

    /// Whether the debug text is set and is not "0".
    bool IsDebug() const { return !debug.empty() && debug != L"0"; }

    /// The program's version, "4.5.1.0".
    static std::wstring Version();

private:
    void StoreIdentifiers();
    void UploadReport();

    std::wstring sessionID;
    std::wstring referrerID;
    std::wstring userID;
    std::wstring debug;
    bool isDetecting = false;
    bool detectorsInitialised = false;
    RequestInterval upload;
    WantedGroups wanted;
    Components components;
    SystemValues values;
};

}  // namespace kel
