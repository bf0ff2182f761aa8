#include "kit/Process.h"

#include <windows.h>

#include <array>
#include <vector>

#include "diag/Timer.h"
#include "platform/Handles.h"
#include "program/text/UserError.h"
#include "service/Utf8.h"
#include "verdict/text/Utf8.h"

namespace kel::kit {

namespace {

constexpr DWORD ExitCodeWhenLate = 1;
constexpr std::size_t MaxOutput = std::size_t{4} << 20;  // bytes

std::wstring Expand(const std::wstring& text)
{
    std::vector<wchar_t> expanded(32768);
    const DWORD length =
        ExpandEnvironmentStringsW(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
    return length > 0 && length <= expanded.size() ? std::wstring(expanded.data()) : text;
}

/// A file for the output, which the system removes with its last handle. A pipe would be held open by
/// programs that outlive the one that was run.
OwnedHandle MakeOutputFile()
{
    std::array<wchar_t, MAX_PATH + 1> folder = {};
    std::array<wchar_t, MAX_PATH + 1> path = {};
    GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
    if (GetTempFileNameW(folder.data(), L"kit", 0, path.data()) == 0)
        throw program::UserError("No file can be made in the folder for temporary files.");
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    const HANDLE file = CreateFileW(path.data(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited,
                                    CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        throw program::UserError("No file can be made in the folder for temporary files.");
    return OwnedHandle(file);
}

/// Consoles write in the system's old code page, some programs in UTF-8.
std::string ReadOutput(HANDLE file)
{
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    std::string bytes(MaxOutput, '\0');
    DWORD count = 0;
    ::ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
    bytes.resize(count);
    std::erase(bytes, '\r');
    if (IsPlainText(bytes))
        return bytes;
    std::wstring text(bytes.size(), L'\0');
    const int length = MultiByteToWideChar(CP_OEMCP, 0, bytes.data(), static_cast<int>(bytes.size()),
                                           text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return ToUtf8(text);
}

/// A job that ends with this program, and all that runs in it.
OwnedHandle MakeJob()
{
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return job;
}

}  // namespace

Ran RunProgram(const std::wstring& commandLine, unsigned maxSeconds)
{
    Ran ran;
    const OwnedHandle output = MakeOutputFile();
    const OwnedHandle job = MakeJob();
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    startup.hStdOutput = startup.hStdError = output.get();
    std::wstring expanded = Expand(commandLine);
    PROCESS_INFORMATION started = {};
    const std::int64_t start = Timer::ReadCounter();
    if (!CreateProcessW(nullptr, expanded.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW | CREATE_SUSPENDED,
                        nullptr, nullptr, &startup, &started))
        return ran;
    const OwnedHandle process(started.hProcess);
    const OwnedHandle thread(started.hThread);
    AssignProcessToJobObject(job.get(), process.get());  // Windows 7 refuses it in some jobs
    ResumeThread(thread.get());
    ran.isStarted = true;
    ran.isLate = WaitForSingleObject(process.get(), maxSeconds * 1000) == WAIT_TIMEOUT;
    if (ran.isLate) {
        TerminateJobObject(job.get(), ExitCodeWhenLate);
        TerminateProcess(process.get(), ExitCodeWhenLate);
        WaitForSingleObject(process.get(), INFINITE);
    }
    GetExitCodeProcess(process.get(), &ran.code);
    ran.seconds = static_cast<double>(Timer::ReadCounter() - start) / static_cast<double>(Timer::Frequency());
    ran.output = ReadOutput(output.get());
    return ran;
}

std::wstring Quoted(const std::wstring& text)
{
    return L"\"" + text + L"\"";
}

}  // namespace kel::kit
