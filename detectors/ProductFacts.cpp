#include "detectors/ProductFacts.h"

#include "detectors/Facts.h"
#include "probes/Attempt.h"
#include "probes/ProductFinder.h"
#include "values/Version.h"

namespace kel {

void StoreProduct(const wchar_t* detector, const Product& product, const Installation* found)
{
    if (found != nullptr)
        WriteLog(LogTrace, detector, L"[0] ", product.name, L" from ", found->source);
    if (product.existsId != NotStored)
        Component::AddValue(product.existsId, Exists(found != nullptr));
    if (product.versionId == NotStored)
        return;
    if (found != nullptr && !found->version.empty())
        Component::AddValue(product.versionId, Version(found->version));
    else
        Component::AddValue(product.versionId, std::wstring());
}

void StoreNewest(const wchar_t* detector, const SoftwareFunctions& functions, std::span<const Product> table)
{
    ProductFinder finder(functions, table);
    for (const Product& product : table) {
        std::optional<Installation> found;
        Attempt(L"Error while looking for a product.", [&] { found = finder.FindNewest(product); });
        StoreProduct(detector, product, found ? &*found : nullptr);
    }
}

}  // namespace kel
