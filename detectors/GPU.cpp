#include "detectors/Detectors.h"
#include "detectors/GpuFacts.h"
#include "detectors/GraphicsAdapters.h"

namespace kel {

namespace {

constexpr FactTable Totals(Fact{72000, &ListTotals::isThere}, Fact{72001, &ListTotals::count});

}  // namespace

bool GPU::Detect()
{
    return Detect(GraphicsAdapters::Instance());
}

bool GPU::Detect(GraphicsAdapters& adapters)
{
    return Guarded(L"kel::GPU::Detect", L"Error in GPU::Detect", [&adapters] {
        StoreDefaults(Totals, GpuFacts);
        const std::vector<GpuDevice>& devices = adapters.List();
        Totals.Store(ListTotals(std::ssize(devices)));
        StoreList(GpuFacts, devices, L"GPU");
    });
}

StoredFacts GPU::ListFacts()
{
    return CollectFacts(Totals, GpuFacts);
}

}  // namespace kel
