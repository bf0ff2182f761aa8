#pragma once

#include <stdexcept>

namespace kel::program {

/// What the user or the machine did wrong: one line of UTF-8 that says what to do. The program shows it and
/// ends with code 3.
class UserError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace kel::program
