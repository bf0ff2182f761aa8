#pragma once

#include <string_view>

#include "server/base/Exchange.h"

namespace kel::server {

/// An error for a page's script: its status, and a sentence, as application/problem+json.
Answer Problem(int status, std::string_view title, Headers headers = {});

/// The same for a status that has no sentence of its own.
Answer Problem(int status);

/// The headers of every answer to a page, so that an address with a session in it goes no further.
Headers PageHeaders();

}  // namespace kel::server
