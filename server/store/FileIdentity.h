#pragma once

#include <sys/stat.h>

#include <string>

namespace kel::server {

/// The file that a path leads to; equal for two paths to the same file. All missing files are equal.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    static FileIdentity Of(const std::string& path)
    {
        struct stat file {};
        return stat(path.c_str(), &file) == 0 ? FileIdentity{file.st_dev, file.st_ino} : FileIdentity();
    }

    bool operator==(const FileIdentity&) const = default;
};

}  // namespace kel::server
