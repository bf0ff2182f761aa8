#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "probes/software/LocalFiles.h"
#include "probes/software/Product.h"
#include "probes/software/RegistryViews.h"
#include "probes/software/UninstallList.h"

namespace kel {

/// Looks for the products of a table, only at the places that the table names. Keys may remain after a
/// program is removed: where a place names a file, the product counts only if the file exists.
class ProductFinder {
public:
    /// @param newFunctions must outlive this object, as must the products
    ProductFinder(const SoftwareFunctions& newFunctions, std::span<const Product> products)
        : functions(newFunctions), files(newFunctions), uninstallList(newFunctions, products)
    {
    }

    /// The installation that the first locator finds: the program that the system would start.
    std::optional<Installation> FindFirst(const Product& product);

    /// The installation of the highest version among all that the locators find. Versions of files come
    /// before those of installers, and these before those of entries, which use schemes of their own.
    std::optional<Installation> FindNewest(const Product& product);

    /// For each major version the installation that FindNewest would choose, the highest version first.
    /// 32-bit installations count only when there are no others.
    std::vector<Installation> FindMajors(const Product& product);

    /// Whether a product that was not found may still be installed, as the installer refused to list its
    /// products.
    bool IsUncertain(const Product& product) const;

    /// Whether a program id, such as the user's choice for a protocol, belongs to the product and not to
    /// another channel.
    bool IsProgramId(const std::wstring& id, const Product& product);

    /// The version of a file on a fixed drive; empty when it has none.
    std::wstring ReadFileVersion(const std::wstring& path) { return files.ReadVersion(path); }

private:
    /// A search and the list that takes its installations.
    struct Search {
        const Product& product;
        const Locator& locator;
        std::vector<Installation>& found;
    };

    void Find(const Search& search);
    void FindInstalled(const Search& search);
    void FindEntries(const Search& search);
    void FindAppPaths(const Search& search);
    void FindClients(const Search& search);
    void FindRegistered(const Search& search);
    void FindKeys(const Search& search);
    void FindValueNames(const Search& search);
    void FindPackages(const Search& search);
    void FindAllFiles(const Search& search);

    /// Appends the installation of a program file, unless there is none or it belongs to another channel.
    /// @param known a version from elsewhere: of the kind `File` it replaces the file's, else it is used when
    /// the file has none
    void Add(const Search& search, const std::wstring& path, Installation known = {});
    void AddCommand(const Search& search, const RegistryView& view, const std::wstring& key);
    void AddKey(const Search& search, const RegistryView& view, HKEY key);

    std::vector<Installation> FindAll(const Product& product);
    bool IsMet(const Condition& condition);
    bool IsPackagesId(const std::wstring& id, const Product& product);

    std::wstring ReadProperty(const wchar_t* code, const wchar_t* property);

    const SoftwareFunctions& functions;
    LocalFiles files;
    UninstallList uninstallList;
    UINT installerError = ERROR_SUCCESS;  ///< with which the installer refused to list its products
};

}  // namespace kel
