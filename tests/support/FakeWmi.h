#pragma once

#include <wbemidl.h>
#include <windows.h>

#include <comutil.h>

#include <functional>
#include <map>
#include <string>

#include "support/FakeObject.h"

namespace kel::test {

/// A property of a fake object. CIM_EMPTY: the object does not have it.
struct FakeProperty {
    _variant_t value;
    CIMTYPE type = CIM_STRING;
};

using WmiProperties = std::map<std::wstring, FakeProperty>;

/// The answers of a test's fake WMI: objects by query, and its failures.
struct FakeWmiData : FakeServiceData {
    std::map<std::wstring, std::vector<WmiProperties>> objects;
    HRESULT connect = S_OK;
    HRESULT query = S_OK;
    bool refusesBlanket = false;
    std::function<void()> whileAsked = [] {};  ///< the calls of a page that the host lets in meanwhile
    std::vector<std::wstring> queries;
    HRESULT next = S_OK;     ///< a failure comes after the objects
    std::wstring arguments;  ///< the other arguments of the calls
};

/// Replaces WMI's own locator with a fake one while it exists.
class FakeWmi {
public:
    explicit FakeWmi(FakeWmiData& data);

private:
    FakeClass locators;
};

}  // namespace kel::test
