#include "run/System.h"

#include <boost/random/mersenne_twister.hpp>
#include <boost/uuid/detail/random_provider.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <ctime>
#include <memory>
#include <utility>

#include "BuildSettings.h"
#include "diag/Log.h"
#include "diag/LogScope.h"
#include "diag/ProcessInstance.h"
#include "platform/Library.h"
#include "run/ConfigurationTags.h"
#include "run/LogStart.h"
#include "run/store/XMLReport.h"
#include "service/GroupListRequest.h"
#include "service/WebServiceUpload.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr unsigned SessionGroup = 71424;
constexpr unsigned ReferrerGroup = 71218;
constexpr unsigned UserGroup = 71206;

/// Sets a flag while it exists.
class ScopedFlag {
public:
    explicit ScopedFlag(bool& newFlag) : flag(newFlag) { flag = true; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;
    ~ScopedFlag() { flag = false; }

private:
    bool& flag;
};

}  // namespace

System& System::Instance()
{
    // First, and on every call until it succeeds: a module that is unloaded and loaded again would begin a
    // second session.
    [[maybe_unused]] static const HMODULE kept = PinThisModule();
    return ProcessInstance<System>();
}

System::System()
{
    StartLogFile();
    Initialize();
    MakeCurrent();
}

void System::Initialize()
{
    const LogScope trace(L"kel::System::Initialize");
    // Seeded here: a generator that seeds itself leaks memory when the system has no entropy to give.
    boost::random::mt19937 twister;
    boost::uuids::detail::random_provider entropy;
    twister.seed(entropy);
    sessionID = boost::uuids::to_wstring(boost::uuids::random_generator_mt19937(twister)());
}

void System::SetConfiguration(const std::wstring& text)
{
    const LogScope trace(L"kel::System::SetConfiguration");
    WriteLog(LogTrace, L"config= ", text);
    if (text.empty())
        return;

    std::wstring value;
    if (ExtractTag(text, L"<debug>", L"</debug>", value))
        debug = value;
    // Assigned directly: a session named by the configuration does not make an upload due.
    if (ExtractTag(text, L"<session_id>", L"</session_id>", value))
        sessionID = value;
    if (ExtractTag(text, L"<user_id>", L"</user_id>", value))
        userID = value;
    if (ExtractTag(text, L"<referrer_id>", L"</referrer_id>", value))
        referrerID = value;
    if (ExtractTag(text, L"<logging>", L"</logging>", value))
        SetLogLevel(ToInteger(value));
}

void System::Detect()
{
    const LogScope trace(L"kel::System::Detect");
    StoreIdentifiers();
    if (isDetecting)
        return;
    const ScopedFlag detecting(isDetecting);
    FetchWantedGroups();
    if (!detectorsInitialised) {
        components.DetectAll();
        detectorsInitialised = true;
    }
    UploadReport();
    Log::Instance().flush();
}

std::wstring System::FetchWantedGroups()
{
    const std::int64_t now = std::time(nullptr);
    if (!wanted.IsDue(referrerID, now))
        return {};
    GroupListRequest request;
    request.Call();
    wanted.Assign(request.GetResult(), referrerID, request.IsAnswered());
    if (request.HasBegun())
        wanted.MarkSent(now);
    return request.GetResult();
}

void System::DetectLocally(std::vector<unsigned> groups)
{
    const LogScope trace(L"kel::System::DetectLocally");
    if (detectorsInitialised)
        return;
    wanted.Assign(std::move(groups));
    components.DetectAll();
    detectorsInitialised = true;
    Log::Instance().flush();
}

void System::SetReferrerID(const std::wstring& text)
{
    if (text.empty())
        return;
    referrerID = text;
    wanted.Reset();
}

void System::SetSessionID(const std::wstring& text)
{
    if (text.empty())
        return;
    sessionID = text;
    wanted.Reset();
    upload.Reset();
}

std::wstring System::Version()
{
    static const std::wstring version = L"" KEL_SCRIPT_VERSION;
    return version;
}

void System::StoreIdentifiers()
{
    values.AddValue(SessionGroup, sessionID);
    values.AddValue(ReferrerGroup, referrerID);
    values.AddValue(UserGroup, userID);
}

void System::UploadReport()
{
    const std::int64_t now = std::time(nullptr);
    if (!upload.IsDue(now))
        return;
    static std::wstring report;
    report.clear();
    XMLReport(values).GetReport(XMLReport::StandardOption, report);
    WebServiceUpload request(report);
    request.Call();
    if (request.HasBegun())
        upload.MarkSent(now);
}

}  // namespace kel
