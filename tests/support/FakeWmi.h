#pragma once

#include <wbemidl.h>
#include <windows.h>

#include <comutil.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kel::test {

/// A property as a fake object answers it. CIM_EMPTY: the object does not have it.
struct FakeProperty {
    _variant_t value;
    CIMTYPE type = CIM_STRING;
};

using FakeObject = std::map<std::wstring, FakeProperty>;

/// What the fake WMI of a test answers: objects by query, and where it fails.
struct FakeWmiData {
    std::map<std::wstring, std::vector<FakeObject>> objects;
    HRESULT connect = S_OK;
    HRESULT query = S_OK;
    bool refusesBlanket = false;
    std::function<void()> whileAsked = [] {};  ///< what a page does that is let in meanwhile
    std::vector<std::wstring> queries;
    HRESULT next = S_OK;     ///< a failure comes after the objects
    std::wstring arguments;  ///< what else the calls were given
    ULONG references = 0;    ///< on the fakes, all together
    std::vector<std::shared_ptr<void>> made;
};

/// Puts a fake locator in the place of WMI's own, in this process and in an apartment, as long as it lives.
class FakeWmi {
public:
    explicit FakeWmi(FakeWmiData& data);
    FakeWmi(const FakeWmi&) = delete;
    FakeWmi& operator=(const FakeWmi&) = delete;
    ~FakeWmi();

private:
    DWORD registration = 0;
};

}  // namespace kel::test
