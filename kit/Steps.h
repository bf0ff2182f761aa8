// The steps that install, use and remove the product, as the table kit/steps.tsv has them.
#pragma once

#include <set>
#include <string>

#include "kit/Process.h"
#include "kit/Row.h"

namespace kel::kit {

struct Step {
    std::string name;
    std::string needs;    ///< words, all of which the machine has to have; empty for none
    std::string command;  ///< with variables of the environment
    /// An exit code, two of them as "0 to 2", or "prints " and a text, which takes the code 0.
    std::string expected;
    bool needsRights = false;
};

/// Whether a program has ended as a step expects it.
bool IsExpected(const std::string& expected, const Ran& ran);

/// @param path UTF-8
std::vector<Step> ReadSteps(const std::string& path);

/// Runs the steps in order, a row for each.
/// @param has what steps can need and this machine has
Rows RunSteps(const std::vector<Step>& steps, const std::set<std::string>& has);

}  // namespace kel::kit
