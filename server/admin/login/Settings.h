#pragma once

#include <string>

namespace kel::server {

/// The settings for access to the administration.
struct AdminSettings {
    int sessionHours = 12;
    bool singleSignOn = false;  // the proxy's X-Remote-User names the account
    std::string host;           // allowed in addition to the loopback's names; empty: none
};

}  // namespace kel::server
