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

void StoreVersion(const Product& product, const Installation& found, int index)
{
    if (found.version.empty())
        Component::AddValue(product.versionId, std::wstring(), index);
    else
        Component::AddValue(product.versionId, Version(found.version), index);
}

}  // namespace

void StoreProduct(const wchar_t* detector, const Product& product, std::span<const Installation> found)
{
    for (std::size_t index = 0; index < found.size(); ++index)
        WriteLog(LogTrace, detector, L'[', index, L"] ", product.name, L" from ", found[index].source,
                 L", version from ", found[index].version.empty() ? L"nowhere" : NameOf(found[index].from));
    for (const unsigned id : {product.existsId, product.companionId}) {
        if (id != NotStored)
            Component::AddValue(id, Exists(!found.empty()));
    }
    if (product.versionId == NotStored)
        return;
    if (found.empty())
        Component::AddValue(product.versionId, std::wstring());
    for (std::size_t index = 0; index < found.size(); ++index)
        StoreVersion(product, found[index], static_cast<int>(index));
}

void NoteProduct(const Product& product, const Failures& failures) noexcept
{
    if (failures.AreNone())
        return;
    Attempt(L"Error while looking for a product.", [&] {
        SystemValues& values = Session::Current().Values();
        Reason reason = {Reason::Kind::DetectorFailed, {}};
        if (!failures.sources.empty())
            reason = {Reason::Kind::NotReadable, failures.sources.front()};
        for (const unsigned id : {product.existsId, product.companionId, product.versionId}) {
            if (id != NotStored && values.FindReason(SystemValueID(GroupID(id))))
                values.SetReason(SystemValueID(GroupID(id)), reason);
        }
    });
}

void AddFacts(StoredFacts& facts, std::span<const Product> table)
{
    for (const Product& product : table) {
        for (const unsigned id : {product.existsId, product.companionId}) {
            if (id != NotStored)
                facts.push_back({id, TypeName<Exists>});
        }
        if (product.versionId != NotStored)
            facts.push_back({product.versionId, TypeName<Version>});
    }
}

void StoreDefaults(std::span<const Product> table)
{
    for (const Product& product : table) {
        for (const unsigned id : {product.existsId, product.versionId}) {
            if (id != NotStored)
                Component::AddValue(id, std::wstring());
        }
    }
    for (const Product& product : table) {
        if (product.companionId != NotStored)
            Component::AddValue(product.companionId, std::wstring());
    }
}

void StoreNewest(const wchar_t* detector, const SoftwareFunctions& functions, std::span<const Product> table)
{
    StoreDefaults(table);
    ProductFinder finder(functions, table);
    for (const Product& product : table) {
        const FailureScope scope;
        Attempt(L"Error while looking for a product.", [&] {
            std::vector<Installation> found;
            if (product.hasMajors)
                found = finder.FindMajors(product);
            else if (const std::optional<Installation> newest = finder.FindNewest(product))
                found.push_back(*newest);
            if (!found.empty() || !finder.IsUncertain(product))
                StoreProduct(detector, product, found);
        });
        NoteProduct(product, scope.Found());
    }
}

}  // namespace kel
