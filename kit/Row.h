#pragma once

#include <string>
#include <vector>

namespace kel::kit {

/// How a check ended. NotHere: the machine lacks what the check needs, so it says nothing about the product.
enum class State { Ok, Wrong, NotHere };

/// One check and its result. Texts are UTF-8.
struct Row {
    std::string part;  ///< of the page: "Unit tests" and so on
    std::string name;
    State state = State::NotHere;
    std::string expected;
    std::string found;  ///< or why the check says nothing
    double seconds = 0;
};

using Rows = std::vector<Row>;

}  // namespace kel::kit
