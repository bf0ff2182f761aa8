#include "program/files/File.h"

#include <windows.h>

#include "platform/Handles.h"
#include "program/text/UserError.h"
#include "service/Utf8.h"

namespace kel::program {

namespace {

constexpr std::size_t PieceSize = 65536;

OwnedHandle Open(const std::string& path, DWORD access, DWORD disposition)
{
    const HANDLE file = CreateFileW(FromUtf8(path).c_str(), access, FILE_SHARE_READ, nullptr, disposition,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    return OwnedHandle(file);
}

std::string ErrorText()
{
    const DWORD error = GetLastError();
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return "there is no such file or folder";
        case ERROR_ACCESS_DENIED:
            return "access is denied, or it is a folder";
        case ERROR_SHARING_VIOLATION:
            return "another program has it open";
        default:
            return "error " + std::to_string(error);
    }
}

}  // namespace

std::string ReadFile(const std::string& path, std::size_t maxBytes)
{
    const OwnedHandle file = Open(path, GENERIC_READ, OPEN_EXISTING);
    if (!file)
        throw UserError("The file cannot be read: " + ErrorText() + ".");
    std::string bytes;
    for (DWORD count = 1; count > 0;) {
        const std::size_t start = bytes.size();
        if (start > maxBytes)
            throw UserError("The file has more than " + std::to_string(maxBytes >> 20) +
                            " MB. Is it the right one?");
        bytes.resize(start + PieceSize);
        if (!::ReadFile(file.get(), bytes.data() + start, PieceSize, &count, nullptr))
            throw UserError("The file cannot be read: " + ErrorText() + ".");
        bytes.resize(start + count);
    }
    return bytes;
}

void WriteFile(const std::string& path, std::string_view bytes)
{
    const OwnedHandle file = Open(path, GENERIC_WRITE, CREATE_ALWAYS);
    DWORD count = 0;
    if (!file || !::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) ||
        count != bytes.size())
        throw UserError(path + ": The file cannot be written: " + ErrorText() +
                        ". Name a file in a folder of your own.");
}

}  // namespace kel::program
