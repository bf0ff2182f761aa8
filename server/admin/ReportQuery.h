#pragma once

#include <string>
#include <string_view>

#include "server/admin/Period.h"
#include "server/admin/ValueCondition.h"
#include "server/admin/login/AdminRequest.h"
#include "server/store/Reports.h"

namespace kel::server {

/// Which reports a list shows, as its address says. Each figure of a page links to its reports with one.
struct ReportQuery {
    std::string referrer, session;  // the session can be its short number
    std::string user = {}, machine = {};
    std::string failing = {};  // the label of a line of the product that fails
    std::string verdict = {};  // "pass", "fail", "unknown"; empty: any
    int version = 0;           // by which the verdict is; 0: any
    int line = 0;              // of that version, from 1 on, which has the result `result`; 0: any
    std::string result = {};
    ValueCondition condition = {};
    bool isOnce = false;  // only the report with the newest verdict of each session on each product
    Period period = Period::Of(Period::All);
    std::string problem = {};  // the first parameter that is wrong, as a sentence; empty when none is

    static ReportQuery Read(const AdminRequest& request);
    /// A product's sessions in a period, each once.
    static ReportQuery SessionsOf(const std::string& referrer, const Period& period);

    /// The same list with one more restriction.
    ReportQuery With(std::string_view total) const;
    ReportQuery OfVersion(int number) const;
    ReportQuery WithLine(int number, std::string_view lineResult) const;
    ReportQuery WithValue(const ValueCondition& value) const;

    /// The filter but for the failing line, which needs the requirements' texts, and the value's condition,
    /// which needs the reports' (see SearchReports).
    ReportFilter Filter() const;
    /// The address of the list, "/reports?…"; further parameters can be appended.
    std::string Address() const { return "/reports?" + Parameters(); }
    std::string Parameters() const { return period.Query() + Restrictions(); }
    /// The parameters but for the period: "&referrer=demo".
    std::string Restrictions() const;
};

/// A number that links to the reports that it counts; without a link when it is 0.
Html CountLink(const ReportQuery& query, std::int64_t count);

}  // namespace kel::server
