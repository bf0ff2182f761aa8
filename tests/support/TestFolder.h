#pragma once

#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace kel::test {

/// A name that nothing else in this or another process has.
inline std::wstring NewName()
{
    static unsigned made = 0;
    return std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(GetTickCount64()) + L"-" +
           std::to_wstring(++made);
}

/// Called before a test removes what it planted. With KEL_INTERRUPT set, ends the process there, as an
/// interrupted run ends: the next run finds everything that was planted.
inline void EndIfInterrupted()
{
    if (std::getenv("KEL_INTERRUPT") != nullptr)
        TerminateProcess(GetCurrentProcess(), 130);
}

/// A new folder for a test, removed with its contents by the destructor.
class TestFolder {
public:
    TestFolder() { std::filesystem::create_directory(path); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder()
    {
        EndIfInterrupted();
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    const std::filesystem::path& Path() const { return path; }

private:
    const std::filesystem::path path = std::filesystem::temp_directory_path() / NewName();
};

}  // namespace kel::test
