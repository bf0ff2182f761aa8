#pragma once

#include <string>

namespace kel::server {

/// How the administration lets people in.
struct AdminSettings {
    int sessionHours = 12;
    bool singleSignOn = false;  // the proxy's X-Remote-User names the account
    std::string host;           // beside the loopback's names; empty: none
};

}  // namespace kel::server
