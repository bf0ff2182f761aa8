#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "probes/software/Product.h"
#include "probes/software/RegistryViews.h"

namespace kel {

/// The values of an entry in the list of installed programs; missing ones are empty.
struct UninstallEntry {
    std::wstring folder;       ///< "InstallLocation"
    std::wstring icon;         ///< "DisplayIcon", often the program itself
    std::wstring uninstaller;  ///< "UninstallString", a command
    std::wstring version;      ///< "DisplayVersion"
};

/// The list of installed programs, in its three views. Parts of a larger product (components, updates) and
/// leftovers of a removal (keys with one value) are skipped. Only entries that a product of the table may
/// match are kept.
class UninstallList {
public:
    /// @param newFunctions must outlive this object, as must the products
    UninstallList(const SoftwareFunctions& newFunctions, std::span<const Product> newProducts)
        : functions(newFunctions), products(newProducts)
    {
    }

    /// The entries that match a locator of the kind UninstallKey or DisplayName.
    std::vector<UninstallEntry> Find(const Locator& locator);

private:
    struct Named {
        RegistryView view;
        std::wstring key;
        std::wstring displayName;
    };

    void ReadNames();
    bool IsLookedFor(const std::wstring& displayName) const;
    std::optional<UninstallEntry> ReadEntry(const RegistryView& view, const std::wstring& name,
                                            const wchar_t* publisher) const;

    const SoftwareFunctions& functions;
    std::span<const Product> products;
    bool isRead = false;
    std::vector<Named> names;
};

}  // namespace kel
