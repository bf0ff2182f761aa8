#pragma once

#include <memory>
#include <string>

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/protocol/RateLimit.h"
#include "server/protocol/Service.h"

namespace kel::server {

/// What the service offers to pages whose visitors have no control.
struct CheckSettings {
    std::string program;          // the file that visitors download; empty: none
    std::size_t downloads = 100;  // at the same time
    unsigned questions = 1000;    // for verdicts, in a second
};

/// The requests of such pages: the program for a visitor, and the verdict on its report. The session is a
/// UUID that the page makes up; anybody who knows it gets the verdict, so no answer and no log line spreads
/// it. For any thread. Throws Fault when the database fails.
class Checks {
public:
    /// Reads the program. Throws std::runtime_error when that fails.
    Checks(Service& service, Metrics& metrics, const CheckSettings& settings);

    /// The program, or the part of it that the request asks for, under the name of the product and session.
    Answer Program(const std::string& product, const std::string& session, const Request& request);
    /// The verdict on the session's newest report, in a language that the request accepts; 404 while there is
    /// none.
    Answer Verdict(const std::string& product, const std::string& session, const Request& request);
    /// The permissions of a page's origin.
    Answer Preflight(const std::string& product, const Request& request);

private:
    std::shared_ptr<const std::string> BeginDownload();

    Service& service;
    Metrics& metrics;
    const std::size_t maxDownloads;
    RateLimit questions;
    std::shared_ptr<const std::string> program;  // null when there is none
    std::string tag;                             // which changes with the program
};

}  // namespace kel::server
