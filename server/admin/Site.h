#pragma once

#include <string>

#include "server/admin/Routes.h"
#include "server/admin/login/Sessions.h"
#include "server/admin/login/Settings.h"
#include "server/admin/login/Throttle.h"
#include "server/http/Router.h"

namespace kel::server {

/// The administration: passes a request to its page, once the sender's rights are checked. For any thread.
class Site {
public:
    Site(Database& database, AdminSettings settings);

    /// Adds the routes of all pages, and a page for a request that has no route.
    void AddTo(Router& router);

private:
    Answer Handle(const Call& call, const Route* route, const std::string& allowed);
    Answer Respond(AdminRequest& request, const Route* route, const std::string& allowed, bool isProgram);
    Answer Respond(AdminRequest& request, const Route& route, bool isProgram, bool hasToken);

    Database& database;
    const AdminSettings settings;
    Sessions sessions;
    Throttle throttle;
};

}  // namespace kel::server
