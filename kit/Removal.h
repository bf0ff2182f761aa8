#pragma once

#include <filesystem>
#include <system_error>
#include <utility>

namespace kel::kit {

/// Removes a file before its life and at its end, also when an exception ends it.
class Removal {
public:
    explicit Removal(std::filesystem::path file) : path(std::move(file)) { Remove(); }
    Removal(const Removal&) = delete;
    Removal& operator=(const Removal&) = delete;
    ~Removal() { Remove(); }

private:
    void Remove() const
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

    std::filesystem::path path;
};

}  // namespace kel::kit
