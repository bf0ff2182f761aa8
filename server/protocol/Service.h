#pragma once

#include <memory>
#include <string>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/protocol/ReportCache.h"
#include "server/protocol/SetCache.h"
#include "server/report/Report.h"
#include "server/store/RequirementSets.h"
#include "server/store/Verdicts.h"

namespace kel::server {

/// The control's requests, once their targets are read. Every operation may be called by any thread and
/// throws Fault for a request that is wrong. Characters that XML does not allow are replaced by U+FFFD.
class Service {
public:
    Service(Database& database, Metrics& metrics);

    /// The ids of the groups that a referrer's requirements need, separated by bars. 404 when it is not
    /// known.
    Answer GroupList(const std::string& referrer);
    /// Keeps a report. 413 when it has too many elements or values.
    Answer Upload(std::string body);
    /// Keeps a report that comes escaped inside of <SystemInformation><Data>.
    Answer SystemInformation(std::string body);
    /// Judges the newest report of the session that the request names: XML, or HTML or JSON where it asks for
    /// them. 404 when the referrer or the session is not known.
    Answer Analysis(const std::string& referrer, std::string body);
    /// The file that the control times: a megabyte that no line compresses.
    Answer TestFile() const;

private:
    PublishedSet Find(const std::string& referrer);
    void Clean(std::string& xml);
    std::shared_ptr<const Report> FindReport(std::int64_t id);
    void SaveVerdict(const NewVerdict& verdict);

    Database& database;
    Metrics& metrics;
    SetCache sets;
    ReportCache reports;
    std::shared_ptr<const std::string> testFile;
};

}  // namespace kel::server
