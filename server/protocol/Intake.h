#pragma once

#include <memory>
#include <string>

#include "server/report/Report.h"
#include "server/store/Reports.h"

namespace kel::server {

/// A report that keeps the service's bounds: its values, and what is stored of it.
struct Intake {
    std::shared_ptr<const Report> report;
    NewReport entry;

    /// Checks a report whose forbidden characters are replaced. Throws Fault 400 when the text is not a
    /// report, or names no session; 413 when it has too many elements or values.
    static Intake Check(const std::string& body);
};

}  // namespace kel::server
