// The product's values beside those of the system's own tools.
#pragma once

#include <string>
#include <vector>

#include "kit/Row.h"
#include "kit/Tools.h"
#include "verdict/files/Snapshot.h"

namespace kel::kit {

/// A row of the table of comparisons. Each value of the id has to be among the tool's answers.
struct ComparedValue {
    int id = 0;
    std::string tool;
    std::string expression;
    std::string kind;      ///< how the texts are compared; the table lists the kinds
    double tolerance = 0;  ///< percent of the tool's number
    bool needsRights = false;
    bool needsWindows = false;  ///< Wine's tool invents its answer
    bool needsAll = false;      ///< the product must not have fewer values than the tool
};

/// @param path UTF-8
/// @throws UserError for a row that is not understood
std::vector<ComparedValue> ReadComparisons(const std::string& path);

/// Whether a value of the product and a tool's answer are the same, by the kind of the row.
/// @throws UserError for an unknown kind
bool IsSame(const ComparedValue& row, const std::string& found, const std::string& answer);

/// Whether the product's values of an id and the tool's answers are the same, as the row asks it.
bool AreSame(const ComparedValue& row, const std::vector<std::string>& found,
             const std::vector<std::string>& answers);

/// Compares a snapshot with the tools, a row for each of the table.
Rows Compare(const std::vector<ComparedValue>& table, const Snapshot& snapshot, Tools& tools);

}  // namespace kel::kit
