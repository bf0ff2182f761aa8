#pragma once

#include <string>

namespace kel::server {

/// An empty file with a unique name beside another one; the destructor deletes it. Throws std::runtime_error
/// when it cannot be created.
class NewFile {
public:
    explicit NewFile(const std::string& beside);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    std::string path;
};

/// Flushes a file, or a folder's entries, to the disk. Throws std::runtime_error when that fails.
void Sync(const std::string& path);

/// The same for the folder that a file is in.
void SyncFolderOf(const std::string& file);

}  // namespace kel::server
