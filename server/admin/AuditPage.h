#pragma once

#include "server/admin/Visit.h"
#include "server/store/Store.h"

namespace kel::server {

/// Who did what, for editors.
class AuditPage {
public:
    explicit AuditPage(Store& store) : store(store) {}

    Answer Show(const Visit& visit) const;

private:
    Store& store;
};

/// The names of the values, for whoever writes requirements.
Answer ShowValues(const Visit& visit);

}  // namespace kel::server
