#pragma once

#include <string>

namespace kel {

/// Whether a device's name is one that virtual machines give to theirs, such as "VBOX CD-ROM".
bool IsVirtualName(const std::wstring& name);

}  // namespace kel
