#pragma once

#include <string>

#include "service/WebService.h"

namespace kel {

/// Uploads a rendered report.
class WebServiceUpload : public WebService {
public:
    explicit WebServiceUpload(std::wstring report);
};

}  // namespace kel
