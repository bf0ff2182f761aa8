#pragma once

#include <string>

#include "server/admin/kit/Form.h"
#include "server/admin/kit/Html.h"
#include "server/admin/login/Sessions.h"
#include "server/admin/login/Throttle.h"
#include "server/base/Exchange.h"
#include "server/base/Fault.h"
#include "server/http/Target.h"
#include "verdict/text/Text.h"

namespace kel::server {

/// A request to the administration whose sender has the rights for it, and what a page needs to answer it.
struct AdminRequest {
    const Request& http;
    const Target& target;
    std::string subject;  // the part of the path that the route's star stands for
    Database& database;
    Sessions& sessions;
    Throttle& throttle;
    bool isSingleSignOn = false;
    Form form = {};    // of a POST
    Login login = {};  // without an account when nobody is logged in

    bool IsEditor() const { return !login.account.empty() && login.role == Role::Editor; }
    /// A parameter of the query, cleaned; empty when it is missing or repeated.
    std::string Query(std::string_view name) const { return Clean(target.Only(name, true).value_or("")); }
    /// The subject as a referrer; throws Fault 404 when it cannot be one.
    const std::string& Referrer() const
    {
        if (!IsReferrer(subject))
            throw Fault(404, "There is no such product.");
        return subject;
    }
    /// The subject as an id; throws Fault 404 when it cannot be one.
    std::int64_t Id() const
    {
        const std::int64_t id = WholeNumber(subject);
        if (id < 0)
            throw Fault(404, "There is no such page.");
        return id;
    }
};

}  // namespace kel::server
