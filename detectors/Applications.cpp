#include "detectors/Detectors.h"
#include "detectors/ProductFacts.h"
#include "detectors/ProductTables.h"

namespace kel {

bool Applications::Detect()
{
    return Detect(SoftwareFunctions::OfSystem());
}

bool Applications::Detect(const SoftwareFunctions& functions)
{
    return Guarded(L"kel::Applications::Detect", L"Error with Applications detection.",
                   [&] { StoreNewest(L"Applications", functions, table); });
}

void Applications::Initialize()
{
    const LogScope trace(L"kel::Applications::Initialize");
    table = ApplicationTable();
}

StoredFacts Applications::ListFacts()
{
    StoredFacts facts;
    AddFacts(facts, ApplicationTable());
    return facts;
}

}  // namespace kel
