#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kel::server {

/// A report as it arrived.
struct NewReport {
    std::string session;
    std::string referrer;  // empty when it names none that could exist
    std::string user;
    std::string body;
};

struct StoredReport {
    std::int64_t id = 0;
    std::string body;
};

/// A published version of a product's requirements.
struct StoredSet {
    std::int64_t id = 0;
    int version = 0;
    std::string text;  // JSON, as it was published
};

/// A verdict on a stored report by a stored set.
struct NewVerdict {
    std::int64_t report = 0;
    std::int64_t set = 0;
    std::string item;
    std::string total;
    std::string lines;  // JSON
};

/// What the service keeps. Every operation may be called by any thread, is done entirely or not at all, and
/// throws std::runtime_error when the database fails.
class Store {
public:
    virtual ~Store() = default;

    /// Appends a report.
    virtual void Keep(const NewReport& report) = 0;
    /// The newest report of a session.
    virtual std::optional<StoredReport> NewestReport(const std::string& session) = 0;
    /// The newest requirements of a referrer; nothing when it is not known.
    virtual std::optional<StoredSet> NewestSet(const std::string& referrer) = 0;
    /// Publishes requirements as a referrer's newest version, unless they are the newest already; the
    /// version.
    virtual int Publish(const std::string& referrer, const std::string& text) = 0;
    /// Keeps a verdict; a later one of the same report and set replaces it.
    virtual void Keep(const NewVerdict& verdict) = 0;
};

}  // namespace kel::server
