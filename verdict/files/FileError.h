#pragma once

#include <stdexcept>

namespace kel {

/// Why a file of a machine's values cannot be read: one line of UTF-8 that says what to do.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace kel
