#pragma once

#include <span>
#include <string_view>

#include "server/admin/login/AdminRequest.h"

namespace kel::server {

/// The access that a page needs: none, any account, or an editor.
enum class Access { Open, Reader, Editor };

/// The address of a page.
struct Route {
    std::string_view method, pattern;
    Access access;
    Answer (*page)(const AdminRequest&);
    std::span<const std::string_view> parameters = {};  // that a program may put into the query
};

/// All pages of the administration.
extern const std::span<const Route> Routes;

}  // namespace kel::server
