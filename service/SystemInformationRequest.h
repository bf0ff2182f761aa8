#pragma once

#include "service/WebService.h"

namespace kel {

/// Sends the report of the current session as escaped text in an envelope.
class SystemInformationRequest : public WebService {
public:
    SystemInformationRequest();
};

}  // namespace kel
