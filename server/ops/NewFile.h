#pragma once

#include <string>

namespace kel::server {

/// An empty file of a name that nobody else has, beside another, until the end. Throws std::runtime_error
/// when it cannot be made.
class NewFile {
public:
    explicit NewFile(const std::string& beside);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    std::string path;
};

/// Writes a file, or what a folder lists, to the disk. Throws std::runtime_error when that fails.
void Sync(const std::string& path);

/// The same for the folder that a file is in.
void SyncFolderOf(const std::string& file);

}  // namespace kel::server
