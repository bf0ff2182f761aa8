#pragma once

#include <string>
#include <utility>
#include <vector>

#include "server/store/SqlConnection.h"

namespace kel::server {

/// "$2, $3, $4": that many placeholders from the first one on.
inline std::string ParameterList(std::size_t first, std::size_t count)
{
    std::string list;
    for (std::size_t i = first; i < first + count; ++i)
        list += (i == first ? "$" : ", $") + std::to_string(i);
    return list;
}

/// A statement's conditions and their values.
class Conditions {
public:
    /// Adds a condition in which ? stands for the value.
    void Add(std::string condition, SqlValue value)
    {
        values.push_back(value);
        condition.replace(condition.find('?'), 1, Parameter());
        text += (text.empty() ? " WHERE " : " AND ") + condition;
    }

    /// The placeholder of the last value.
    std::string Parameter() const { return std::string("$").append(std::to_string(values.size())); }

    std::string text;
    std::vector<SqlValue> values;
};

}  // namespace kel::server
