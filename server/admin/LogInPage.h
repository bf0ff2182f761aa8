#pragma once

#include <string>

#include "server/admin/Sessions.h"
#include "server/admin/Throttle.h"
#include "server/admin/Visit.h"

namespace kel::server {

/// Logging in and out.
class LogInPage {
public:
    LogInPage(Store& store, Sessions& sessions);

    Answer Show(const Visit& visit) const;
    Answer LogIn(const Visit& visit);
    Answer LogOut(const Visit& visit);

private:
    Store& store;
    Sessions& sessions;
    Throttle throttle;
    std::string nobodysHash;
};

}  // namespace kel::server
