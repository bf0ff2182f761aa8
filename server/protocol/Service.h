#pragma once

#include <memory>
#include <optional>
#include <string>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/protocol/Intake.h"
#include "server/protocol/ReportCache.h"
#include "server/protocol/SetCache.h"
#include "server/report/Report.h"
#include "server/store/RequirementSets.h"
#include "server/store/Verdicts.h"
#include "verdict/Verdict.h"

namespace kel::server {

/// The control's requests, after their targets are parsed. Every operation may be called by any thread and
/// throws Fault for an invalid request. Characters that XML does not allow are replaced with U+FFFD.
class Service {
public:
    Service(Database& database, Metrics& metrics);

    /// The ids of the groups that a referrer's requirements need, separated by bars. 404 for an unknown
    /// referrer.
    Answer GroupList(const std::string& referrer);
    /// The title of a referrer's requirements, for a program that asks the visitor before it reads anything.
    /// 404 for an unknown referrer.
    Answer Title(const std::string& referrer);
    /// Keeps a report. 413 when it has too many elements or values.
    Answer Upload(std::string body);
    /// Keeps a report that is sent escaped inside <SystemInformation><Data>.
    Answer SystemInformation(std::string body);
    /// Judges the newest report of the session that the request names. The answer is XML, or HTML or JSON if
    /// the request asks for it. 404 when the referrer or the session is unknown.
    Answer Analysis(const std::string& referrer, std::string body);
    /// The newest requirements of a product; null for an unknown one.
    std::shared_ptr<const Requirements> FindRequirements(const std::string& product);
    /// The verdict of a product's requirements on the session's newest report; nothing when there is none, or
    /// when it is for another product. Stores nothing.
    std::optional<Verdict> FindVerdict(const std::string& product, const Requirements& requirements,
                                       const std::string& session, const Languages& languages);
    /// The file whose download the control times: a megabyte that cannot be compressed on the way.
    Answer TestFile() const;

private:
    /// Throws Fault 404 for a referrer without requirements, and counts it.
    PublishedSet Find(const std::string& referrer, Count& unknown);
    void Clean(std::string& xml);
    Intake CheckUpload(const std::string& body);
    std::shared_ptr<const Report> FindReport(std::int64_t id);
    void SaveVerdict(const NewVerdict& verdict);

    Database& database;
    Metrics& metrics;
    SetCache sets;
    ReportCache reports;
    std::shared_ptr<const std::string> testFile;
};

}  // namespace kel::server
