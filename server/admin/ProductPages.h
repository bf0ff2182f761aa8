#pragma once

#include <string>

#include "server/admin/kit/Html.h"
#include "server/admin/login/AdminRequest.h"

namespace kel::server {

/// A page about the product that is the request's subject: the product's title is below the heading.
Answer PageOfProduct(const AdminRequest& request, const std::string& heading, const Html& content,
                     int status = 200);

/// A product's name and, unless it is empty or the same, its title, where a link cannot stand.
std::string NameAndTitle(const std::string& referrer, const std::string& title);

}  // namespace kel::server
