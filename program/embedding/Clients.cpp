#include "program/embedding/Clients.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kel::program {

namespace {

/// Whether a process is a host of the system's services. The service that creates objects for clients is in
/// one, and never ends.
bool IsServiceHost(HANDLE process)
{
    constexpr std::wstring_view Name = L"\\svchost.exe";
    std::array<wchar_t, MAX_PATH> path = {};
    DWORD length = MAX_PATH;
    if (!QueryFullProcessImageNameW(process, 0, path.data(), &length) || length < Name.size())
        return false;
    return _wcsicmp(path.data() + length - Name.size(), Name.data()) == 0;
}

OwnedHandle OpenClient(DWORD id)
{
    OwnedHandle process(id != 0 ? OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id)
                                : nullptr);
    if (process && IsServiceHost(process.get()))
        process.reset();
    return process;
}

}  // namespace

void Clients::Note(DWORD id, Time now) noexcept
{
    const std::lock_guard lock(mutex);
    if (std::any_of(living.begin(), living.end(), [id](const Client& client) { return client.id == id; }))
        return;  // while its handle is open, no other process gets this id
    try {
        if (OwnedHandle process = OpenClient(id)) {
            living.push_back({id, std::move(process)});
            wereKnown = true;
            return;
        }
    } catch (...) {
        // Out of memory: like one that cannot be watched.
    }
    lastUnknown = now;
}

bool Clients::AreGone(Time now) noexcept
{
    const std::lock_guard lock(mutex);
    std::erase_if(living, [](const Client& client) {
        return WaitForSingleObject(client.process.get(), 0) == WAIT_OBJECT_0;
    });
    return wereKnown && living.empty() && (lastUnknown == Time::min() || now - lastUnknown >= MaxUnknown);
}

}  // namespace kel::program
