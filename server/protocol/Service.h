#pragma once

#include <memory>
#include <string>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/protocol/SetCache.h"
#include "server/report/Report.h"
#include "server/store/Store.h"

namespace kel::server {

/// The control's requests, once their targets are read. Every operation may be called by any thread and
/// throws Fault for a request that is wrong.
class Service {
public:
    Service(Store& store, Metrics& metrics);

    /// The ids of the groups that a referrer's requirements need, separated by bars. 404 when it is not
    /// known.
    Answer GroupList(const std::string& referrer);
    /// Keeps a report.
    Answer Upload(const std::string& body);
    /// Keeps a report that comes escaped inside of <SystemInformation><Data>.
    Answer SystemInformation(const std::string& body);
    /// Judges the newest report of the session that the request names: XML, or HTML or JSON where it asks for
    /// them. 404 when the referrer or the session is not known.
    Answer Analysis(const std::string& referrer, const std::string& body);
    /// The file that the control times: a megabyte that no line compresses.
    Answer TestFile() const;

private:
    PublishedSet Find(const std::string& referrer);
    Answer KeepReport(const Report& report, const std::string& body);
    void KeepVerdict(const NewVerdict& verdict);

    Store& store;
    Metrics& metrics;
    SetCache sets;
    std::shared_ptr<const std::string> testFile;
};

}  // namespace kel::server
