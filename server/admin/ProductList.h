#pragma once

#include <optional>
#include <string>
#include <vector>

#include "server/admin/Period.h"
#include "server/admin/kit/Html.h"
#include "server/admin/login/AdminRequest.h"
#include "server/store/DayCounts.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

/// The products of the overview: found by words of their name or title, sorted, page by page, as the address
/// says with find, sort and page. A row has the sessions that the product's newest version judged in the
/// period, and their change from the period before, by the same version.
class ProductList {
public:
    ProductList(const AdminRequest& request, const Period& period);

    /// The form that finds and sorts, the table, and links to the other pages.
    Html Show() const;

private:
    struct Entry {
        Product product;
        Counts sessions, before;  // by its newest version
        int earlier = 0;          // sessions by earlier versions

        /// In percentage points; nothing without sessions in one of the two periods.
        std::optional<int> Change() const;
    };

    void Count(const Days& days, Counts Entry::*own);
    void Find();
    void Sort();
    std::string Address(std::size_t number) const;
    Html SearchForm() const;
    Html Rows() const;
    Html Pages() const;

    Database& database;
    Period period;
    std::string words, order;
    std::size_t page = 0;  // from 0 on
    std::vector<Entry> entries;
};

}  // namespace kel::server
