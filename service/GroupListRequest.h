#pragma once

#include "service/WebService.h"

namespace kel {

/// Asks for the ids of the value groups that the current referrer wants, separated by "|" or ",".
class GroupListRequest : public WebService {
public:
    GroupListRequest();
};

}  // namespace kel
