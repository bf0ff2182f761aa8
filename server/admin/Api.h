#pragma once

#include <string>

#include "server/admin/Visit.h"
#include "server/store/Store.h"

namespace kel::server {

/// What programs ask of the administration, /api/v1/: JSON, and reports as CSV, too.
class Api {
public:
    explicit Api(Store& store) : store(store) {}

    Answer Reports(const Visit& visit) const;
    Answer Referrers(const Visit& visit) const;
    Answer ReadDraft(const Visit& visit) const;
    Answer WriteDraft(const Visit& visit) const;
    Answer Publish(const Visit& visit) const;

private:
    Store& store;
};

/// An error as JSON.
Answer ProgramError(int status, const std::string& reason);

}  // namespace kel::server
