#pragma once

#include <functional>
#include <string>

#include "server/admin/Form.h"
#include "server/admin/Html.h"
#include "server/base/Exchange.h"
#include "server/base/Fault.h"
#include "server/http/Target.h"
#include "server/store/Records.h"
#include "verdict/text/Text.h"

namespace kel::server {

/// A request to the administration by somebody who may make it.
struct Visit {
    const Request& request;
    const Target& target;
    std::string subject;  // what the path has in the place of its route's asterisk
    Form form = {};       // of a POST
    Login login = {};     // without an account: nobody is logged in
    bool isSingleSignOn = false;

    bool IsEditor() const { return !login.account.empty() && login.role == Role::Editor; }
    /// A parameter of the query, cleaned; empty when it is not there, or not once.
    std::string Query(std::string_view name) const { return Clean(target.Only(name).value_or("")); }
    /// The subject as a referrer; 404 when it cannot be one.
    const std::string& Referrer() const
    {
        if (!IsReferrer(subject))
            throw Fault(404, "There is no such product.");
        return subject;
    }
    /// The subject, or a number in the query, as an id; 404 when it is none.
    std::int64_t Id() const
    {
        const std::int64_t id = WholeNumber(subject);
        if (id < 0)
            throw Fault(404, "There is no such page.");
        return id;
    }
};

using Action = std::function<Answer(const Visit&)>;

}  // namespace kel::server
