#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

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

/// 400 with the name of a query parameter that is not one of the allowed ones or is repeated, and with the
/// allowed ones; nothing when all are fine.
std::optional<Answer> RefuseParameters(const Target& target, std::span<const std::string_view> allowed);

}  // namespace kel::server
