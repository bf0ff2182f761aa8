#include "detectors/Detectors.h"

#include "service/BandwidthTest.h"
#include "values/Bandwidth.h"

namespace kel {

namespace {

constexpr unsigned BandwidthId = 71069;

}  // namespace

bool NetworkDevice::Detect()
{
    return Guarded(L"kel::NetworkDevice::Detect", L"Error in NetworkDevice detection.", [] {
        if (!Session::Current().IsWanted(GroupID(BandwidthId)))
            return;
        const std::wstring& rate = RunBandwidthTest();
        // The rate carries its unit already; support tools know the line with both.
        WriteLog(LogTrace, L"Network speed is: ", rate, L" bps");
        AddValue(BandwidthId, Bandwidth(rate));
    });
}

}  // namespace kel
