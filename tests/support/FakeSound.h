// The sound service's enumerator of endpoints, as a test describes it.
#pragma once

#include <mmdeviceapi.h>
#include <propsys.h>

#include <string>

#include "support/FakeObject.h"

namespace kel::test {

struct FakeEndpoint {
    EDataFlow direction;
    std::wstring device;     ///< as its property has it; empty when it has none
    std::wstring form = {};  ///< the number of its form factor
};

struct FakeSoundData : FakeServiceData {
    std::vector<FakeEndpoint> endpoints;
    int defaultOutput = -1;  ///< place of the endpoint; below 0 there is none
    HRESULT enumerate = S_OK;
    HRESULT getDefault = HRESULT_FROM_WIN32(ERROR_NOT_FOUND);  ///< where there is none
    bool isMisused = false;  ///< an endpoint was activated, or the wrong kind of endpoint was requested
};

/// Replaces the system's enumerator while it exists.
class FakeSound {
public:
    explicit FakeSound(FakeSoundData& data);

private:
    FakeClass enumerators;
};

}  // namespace kel::test
