#include "detectors/Adapters.h"
#include "detectors/Detectors.h"
#include "detectors/GPUFacts.h"
#include "values/Count.h"

namespace kel {

namespace {

struct GpuTotals {
    bool isThere = false;
    Count count = Count(0);
};

constexpr FactTable Totals(Fact{72000, &GpuTotals::isThere}, Fact{72001, &GpuTotals::count});

}  // namespace

bool GPU::Detect()
{
    return Detect(Adapters::Instance());
}

bool GPU::Detect(Adapters& adapters)
{
    return Guarded(L"kel::GPU::Detect", L"Error in GPU::Detect", [&adapters] {
        Totals.Store(GpuTotals());
        GpuFacts.Store(GpuInfo());
        const std::vector<GpuDevice>& devices = adapters.List();
        Totals.Store({!devices.empty(), Count(static_cast<std::int64_t>(devices.size()))});
        int index = 0;
        for (const GpuDevice& device : devices)
            GpuFacts.Store(device, L"GPU", index++);
    });
}

}  // namespace kel
