#pragma once

#include "server/admin/Visit.h"
#include "server/store/Store.h"

namespace kel::server {

/// The list of reports, with filters, page by page.
class ReportsPage {
public:
    explicit ReportsPage(Store& store) : store(store) {}

    Answer Show(const Visit& visit) const;

private:
    Store& store;
};

/// A table of reports.
Html ReportsTable(const std::string& caption, const std::vector<ReportLine>& lines,
                  const std::string& whenEmpty);

}  // namespace kel::server
