#include "program/embedding/CallerFilter.h"

#include <cstdint>

#include "platform/Handles.h"

namespace kel::program {

HRESULT CallerFilter::QueryInterface(REFIID riid, void** result)
{
    if (result == nullptr)
        return E_POINTER;
    *result =
        riid == IID_IUnknown || riid == IID_IMessageFilter ? static_cast<IMessageFilter*>(this) : nullptr;
    return *result != nullptr ? S_OK : E_NOINTERFACE;
}

DWORD CallerFilter::HandleInComingCall(DWORD /*type*/, HTASK caller, DWORD /*elapsed*/,
                                       LPINTERFACEINFO /*called*/)
{
    const auto thread = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(caller));
    const OwnedHandle opened(OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, thread));
    const DWORD process = opened ? GetProcessIdOfThread(opened.get()) : 0;
    if (process != 0 && process != GetCurrentProcessId())
        clients.Note(process, std::chrono::steady_clock::now());
    return SERVERCALL_ISHANDLED;
}

}  // namespace kel::program
