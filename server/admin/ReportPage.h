#pragma once

#include "server/admin/Visit.h"
#include "server/store/Store.h"

namespace kel::server {

/// One report: who sent it, its verdicts, its values; and the way to delete all of its session.
class ReportPage {
public:
    explicit ReportPage(Store& store) : store(store) {}

    Answer Show(const Visit& visit) const;
    Answer AskToDelete(const Visit& visit) const;
    Answer Delete(const Visit& visit) const;

private:
    FullReport Find(const Visit& visit) const;
    Html VerdictOf(const StoredVerdict& verdict, const FullReport& report) const;

    Store& store;
};

}  // namespace kel::server
