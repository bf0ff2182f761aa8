#pragma once

#include "server/admin/Visit.h"
#include "server/store/Store.h"

namespace kel::server {

/// The products with what became of their newest verdicts, and the newest reports.
class OverviewPage {
public:
    explicit OverviewPage(Store& store) : store(store) {}

    Answer Show(const Visit& visit) const;

private:
    Store& store;
};

}  // namespace kel::server
