#include "run/LogFile.h"

#include <windows.h>

#include <utility>

#include "platform/Handles.h"

namespace kel {

namespace {

constexpr int AppendAttempts = 100;
constexpr DWORD AttemptPause = 10;  // milliseconds
constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Empty when it cannot be opened.
OwnedHandle OpenPath(const std::wstring& path, DWORD access, DWORD disposition) noexcept
{
    const HANDLE file =
        CreateFileW(path.c_str(), access | FILE_READ_ATTRIBUTES, ShareAll, nullptr, disposition,
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    return OwnedHandle(file != INVALID_HANDLE_VALUE ? file : nullptr);
}

/// Locks a byte far behind the end of a file, which stands for the whole file.
class FileLock {
public:
    explicit FileLock(HANDLE lockedFile) noexcept : file(lockedFile)
    {
        place.OffsetHigh = 0x40000000;
        isLocked =
            LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != FALSE;
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock()
    {
        if (isLocked)
            UnlockFileEx(file, 0, 1, 0, &place);
    }

    explicit operator bool() const noexcept { return isLocked; }

private:
    HANDLE file;
    OVERLAPPED place = {};
    bool isLocked = false;
};

/// Neither a link of any kind nor a folder.
bool IsPlainFile(HANDLE file) noexcept
{
    BY_HANDLE_FILE_INFORMATION information = {};
    return GetFileInformationByHandle(file, &information) && information.nNumberOfLinks == 1 &&
           (information.dwFileAttributes & (FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY)) == 0;
}

bool WriteAtEnd(HANDLE file, std::string_view text) noexcept
{
    DWORD written = 0;
    return SetFilePointerEx(file, {}, nullptr, FILE_END) &&
           WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
           written == text.size();
}

}  // namespace

LogFile::LogFile(std::wstring filePath, std::uint64_t maxFileSize)
    : path(std::move(filePath)), maxSize(maxFileSize)
{
}

bool LogFile::Append(std::string_view lines) const
{
    for (int attempt = 0; attempt < AppendAttempts; ++attempt) {
        const OwnedHandle file = OpenPath(path, GENERIC_WRITE, OPEN_ALWAYS);
        if (!file || !IsPlainFile(file.get()))
            return false;
        const FileLock lock(file.get());
        if (!lock) {
            Sleep(AttemptPause);
            continue;
        }
        LARGE_INTEGER size = {};
        if (!IsCurrent(file.get()) || !GetFileSizeEx(file.get(), &size))
            continue;
        const auto length = static_cast<std::uint64_t>(size.QuadPart);
        if (length == 0 || length + lines.size() <= maxSize)
            return WriteAtEnd(file.get(), lines);
        if (!Rotate())
            return false;  // a program that reads the file holds it
    }
    return false;
}

std::wstring LogFile::Name(int number) const
{
    return number == 0 ? path : path + L"." + std::to_wstring(number);
}

/// Whether an open file is still the one of that path: another process may have renamed it.
bool LogFile::IsCurrent(void* file) const noexcept
{
    const OwnedHandle current = OpenPath(path, 0, OPEN_EXISTING);
    BY_HANDLE_FILE_INFORMATION one = {}, other = {};
    return current && GetFileInformationByHandle(current.get(), &one) &&
           GetFileInformationByHandle(file, &other) && one.nFileIndexHigh == other.nFileIndexHigh &&
           one.nFileIndexLow == other.nFileIndexLow && one.dwVolumeSerialNumber == other.dwVolumeSerialNumber;
}

bool LogFile::Rotate() const
{
    bool isMoved = false;
    for (int number = MaxFiles - 1; number > 0; --number)  // those that are missing fail
        isMoved =
            MoveFileExW(Name(number - 1).c_str(), Name(number).c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE;
    return isMoved;
}

}  // namespace kel
