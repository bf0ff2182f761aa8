#pragma once

#include <cstdint>
#include <string>

// What a store takes and gives. Times are milliseconds since 1970, UTC.
namespace kel::server {

/// A report as it arrived.
struct NewReport {
    std::string session;
    std::string referrer;  // empty when it names none that could exist
    std::string user;
    std::string machine;  // the machine's identifier; empty when the report has none
    std::string body;
};

/// A report with all that is kept of it.
struct FullReport {
    std::int64_t id = 0;
    std::string session, referrer, user, machine;
    std::int64_t received = 0;
    std::string body;
};

/// A report in a list.
struct ReportLine {
    std::int64_t id = 0;
    std::string session, referrer;
    std::int64_t received = 0;
    std::string total;  // of its verdict by the newest requirements that judged it; empty when none did
};

/// Which reports to list; what is empty or 0 lets all pass. With both a referrer and a total, the verdict has
/// to be by that referrer's requirements.
struct ReportFilter {
    std::string referrer, session, total;
    std::int64_t from = 0, until = 0;  // received from this time on, and before that
    std::int64_t beforeId = 0;         // the page after the report of that id
    std::int64_t afterId = -1;         // from 0 on: reports with a greater id, the oldest first
    int count = 50;
};

/// A published version of a product's requirements. It never changes.
struct PublishedSet {
    std::int64_t id = 0;
    int version = 0;
    std::int64_t published = 0;
    std::string author;
};

/// Requirements that are being written; `revision` grows with each change.
struct Draft {
    std::string text;
    int revision = 0;
    std::int64_t changed = 0;
    std::string author;
};

/// What stands in the list of products.
struct Product {
    std::string referrer;
    int version = 0;  // the newest; 0 when nothing is published
    std::int64_t published = 0;
    bool hasDraft = false;
};

/// A verdict on a stored report by a published set.
struct NewVerdict {
    std::int64_t report = 0;
    std::int64_t set = 0;
    std::string item;
    std::string total;
    std::string lines;  // JSON
};

struct StoredVerdict {
    std::int64_t report = 0;
    std::string session;  // of the report
    std::string referrer;
    std::int64_t set = 0;
    int version = 0;
    std::int64_t judged = 0;
    std::string total;
    std::string lines;  // JSON
};

struct Totals {
    int pass = 0, fail = 0, unknown = 0;
};

enum class Role { Reader, Editor };

/// Somebody who may use the administration.
struct Account {
    std::string name;
    std::string hash;  // of the password
    Role role = Role::Reader;
};

enum class LoginKind { Browser, Program };

/// A log-in that has not ended.
struct Login {
    std::string key;  // a hash of what the browser or program holds
    std::string account;
    Role role = Role::Reader;  // the account's, when the log-in is looked up
    std::string formToken;     // which forms of this log-in carry
    std::int64_t ends = 0;
    LoginKind kind = LoginKind::Browser;
    std::string hash = {};  // the account's, that the password was compared with; only to keep the log-in
};

/// Who did what, and when.
struct AuditLine {
    std::int64_t id = 0;
    std::int64_t time = 0;
    std::string account, action, subject;
};

}  // namespace kel::server
