#pragma once

#include <windows.h>

#include <objidl.h>

#include "program/embedding/Clients.h"

namespace kel::program {

/// Notes who calls into the apartment: the system passes the calling thread to a message filter. (Wine passes
/// the called process, which is not a thread.) Must outlive the apartment.
class CallerFilter final : public IMessageFilter {
public:
    explicit CallerFilter(Clients& newClients) : clients(newClients) {}
    CallerFilter(const CallerFilter&) = delete;
    CallerFilter& operator=(const CallerFilter&) = delete;
    ~CallerFilter() = default;

    STDMETHODIMP QueryInterface(REFIID riid, void** result) override;
    // Not counted, as the object is not destroyed.
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP_(DWORD)
    HandleInComingCall(DWORD type, HTASK caller, DWORD elapsed, LPINTERFACEINFO called) override;
    // For the apartment's own calls, as without a filter: a refused call fails, and others wait.
    STDMETHODIMP_(DWORD) RetryRejectedCall(HTASK, DWORD, DWORD) override { return static_cast<DWORD>(-1); }
    STDMETHODIMP_(DWORD) MessagePending(HTASK, DWORD, DWORD) override { return PENDINGMSG_WAITDEFPROCESS; }

private:
    Clients& clients;
};

}  // namespace kel::program
