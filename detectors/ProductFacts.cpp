#include "detectors/ProductFacts.h"

#include "detectors/Facts.h"
#include "probes/Attempt.h"
#include "probes/software/ProductFinder.h"
#include "values/Version.h"

namespace kel {

namespace {

const wchar_t* NameOf(VersionFrom from)
{
    switch (from) {
        case VersionFrom::Installer:
            return L"the installer";
        case VersionFrom::Entry:
            return L"the list of programs";
        default:
            return L"its file or key";
    }
}

}  // namespace

void StoreProduct(const wchar_t* detector, const Product& product, const Installation* found)
{
    if (found != nullptr)
        WriteLog(LogTrace, detector, L"[0] ", product.name, L" from ", found->source, L", version from ",
                 found->version.empty() ? L"nowhere" : NameOf(found->from));
    if (product.existsId != NotStored)
        Component::AddValue(product.existsId, Exists(found != nullptr));
    if (product.versionId == NotStored)
        return;
    if (found != nullptr && !found->version.empty())
        Component::AddValue(product.versionId, Version(found->version));
    else
        Component::AddValue(product.versionId, std::wstring());
}

void AddFacts(StoredFacts& facts, std::span<const Product> table)
{
    for (const Product& product : table) {
        if (product.existsId != NotStored)
            facts.push_back({product.existsId, TypeName<Exists>});
        if (product.versionId != NotStored)
            facts.push_back({product.versionId, TypeName<Version>});
    }
}

void StoreDefaults(std::span<const Product> table)
{
    for (const Product& product : table)
        StoreProduct(L"", product, nullptr);
}

void StoreNewest(const wchar_t* detector, const SoftwareFunctions& functions, std::span<const Product> table)
{
    StoreDefaults(table);
    ProductFinder finder(functions, table);
    for (const Product& product : table) {
        std::optional<Installation> found;
        Attempt(L"Error while looking for a product.", [&] { found = finder.FindNewest(product); });
        StoreProduct(detector, product, found ? &*found : nullptr);
    }
}

}  // namespace kel
