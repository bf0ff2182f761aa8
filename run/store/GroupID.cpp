#include "run/store/GroupID.h"

#include "values/Text.h"

namespace kel {

GroupID::GroupID(const std::wstring& idText) : text(idText), number(ToUnsigned(idText)) {}

GroupID::GroupID(unsigned idNumber) : text(std::to_wstring(idNumber)), number(idNumber) {}

}  // namespace kel
