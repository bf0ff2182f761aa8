#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kel {

/// A log file to which several processes may append. Before it grows beyond its size it becomes NAME.1, after
/// NAME.1 became NAME.2 and so on: there are at most five files.
class LogFile {
public:
    static constexpr int MaxFiles = 5;

    /// @param filePath absolute
    /// @param maxFileSize of each file, in bytes
    LogFile(std::wstring filePath, std::uint64_t maxFileSize);

    /// Appends lines as a whole, UTF-8, when no other process is appending. Waits up to a second for others.
    /// @return false when nothing was written: the file cannot be opened, is held by another program, or is
    /// a link, which could lead to a file of someone else
    bool Append(std::string_view lines) const;

private:
    std::wstring Name(int number) const;
    bool IsCurrent(void* file) const noexcept;
    bool Rotate() const;

    std::wstring path;
    std::uint64_t maxSize;
};

}  // namespace kel
