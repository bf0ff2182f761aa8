#pragma once

#include <optional>
#include <vector>

#include "server/store/SqlConnection.h"

namespace kel::server {

/// The first row, converted by `make`, if there is one.
template <typename Make>
auto First(SqlRows rows, Make make) -> std::optional<decltype(make(rows.front()))>
{
    if (rows.empty())
        return std::nullopt;
    return make(rows.front());
}

/// Every row, converted by `make`.
template <typename Make>
auto Each(SqlRows rows, Make make)
{
    std::vector<decltype(make(rows.front()))> all;
    for (SqlRow& row : rows)
        all.push_back(make(row));
    return all;
}

}  // namespace kel::server
