#pragma once

#include "server/admin/Visit.h"
#include "server/store/Store.h"

namespace kel::server {

/// What becomes of a product's visitors, and what machines they have.
class ProductPage {
public:
    explicit ProductPage(Store& store) : store(store) {}

    Answer Show(const Visit& visit) const;

private:
    Html LinesOf(const std::string& referrer) const;
    Html MachinesOf(const std::string& referrer) const;

    Store& store;
};

}  // namespace kel::server
