#include "server/ops/NewFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace kel::server {

NewFile::NewFile(const std::string& beside) : path(beside + ".XXXXXX")
{
    const int file = mkstemp(path.data());
    if (file < 0)
        throw std::runtime_error(path + " cannot be created");
    close(file);
}

NewFile::~NewFile()
{
    unlink(path.c_str());
}

void Sync(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool done = file >= 0 && fsync(file) == 0;
    if (file >= 0)
        close(file);
    if (!done)
        throw std::runtime_error(path + " cannot be written to the disk");
}

void SyncFolderOf(const std::string& file)
{
    const std::string folder = std::filesystem::path(file).parent_path();
    Sync(folder.empty() ? "." : folder);
}

}  // namespace kel::server
