#pragma once

#include <wbemidl.h>
#include <windows.h>

#include <comutil.h>

#include <functional>
#include <map>
#include <string>

#include "support/FakeObject.h"

namespace kel::test {

/// A property as a fake object answers it. CIM_EMPTY: the object does not have it.
struct FakeProperty {
    _variant_t value;
    CIMTYPE type = CIM_STRING;
};

using WmiProperties = std::map<std::wstring, FakeProperty>;

/// What the fake WMI of a test answers: objects by query, and where it fails.
struct FakeWmiData : FakeServiceData {
    std::map<std::wstring, std::vector<WmiProperties>> objects;
    HRESULT connect = S_OK;
    HRESULT query = S_OK;
    bool refusesBlanket = false;
    std::function<void()> whileAsked = [] {};  ///< what a page does that is let in meanwhile
    std::vector<std::wstring> queries;
    HRESULT next = S_OK;     ///< a failure comes after the objects
    std::wstring arguments;  ///< what else the calls were given
};

/// Puts a fake locator in the place of WMI's own, as long as it lives.
class FakeWmi {
public:
    explicit FakeWmi(FakeWmiData& data);

private:
    FakeClass locators;
};

}  // namespace kel::test
