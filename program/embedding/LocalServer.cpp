#include <windows.h>

#include <objbase.h>
#include <wrl/client.h>

#include "control/ClassFactory.h"
#include "control/DetectionModule.h"
#include "diag/Log.h"
#include "program/Commands.h"
#include "program/embedding/CallerFilter.h"
#include "program/embedding/ClassObject.h"
#include "program/embedding/Clients.h"
#include "program/embedding/Lifetime.h"
#include "program/text/UserError.h"
#include "run/LogStart.h"

namespace kel::program {

namespace {

constexpr DWORD Period = 250;  // milliseconds between two looks at the clients
constexpr std::chrono::milliseconds Farewell{500};
constexpr long OwnLocks = 1;  // of the factory that this program holds

/// @return false when the session of the user ends
bool DispatchMessages()
{
    for (MSG message = {}; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
        if (message.message == WM_QUIT)
            return false;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return true;
}

[[noreturn]] void Refuse(HRESULT result)
{
    Log::Instance().WriteAlways(LogError, L"The local server cannot serve: ",
                                static_cast<unsigned long>(result));
    throw UserError("COM does not take the class from this program.");
}

bool IsInUse()
{
    return CDetectionModule::Instance().LockCount() > OwnLocks;
}

/// Serves until there is an object, or for a moment.
void ServeLateClients()
{
    const auto end = std::chrono::steady_clock::now() + Farewell;
    while (!IsInUse() && std::chrono::steady_clock::now() < end && DispatchMessages())
        MsgWaitForMultipleObjectsEx(0, nullptr, Period, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
}

/// Serves until nobody needs an object any more.
void ServeUntilOver(Clients& clients, ClassObject& classObject)
{
    Lifetime lifetime(std::chrono::steady_clock::now());
    bool isOver = false;
    while (!isOver) {
        MsgWaitForMultipleObjectsEx(0, nullptr, Period, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        if (!DispatchMessages())
            return;
        const auto now = std::chrono::steady_clock::now();
        if (!lifetime.IsOver(now, IsInUse(), clients.AreGone(now)))
            continue;
        // From here on the system starts another server. A client that has got the class from this one may
        // still ask it for an object.
        classObject.Revoke();
        ServeLateClients();
        isOver = !IsInUse() || clients.AreGone(std::chrono::steady_clock::now());
        if (!isOver)
            classObject.Restore();
    }
    if (IsInUse())
        WriteLog(LogTrace, L"The local server ends: all its clients have ended without releasing it.");
}

}  // namespace

int ServeHosts()
{
    FreeConsole();  // the system opens one for a program of this kind
    StartLogFile();
    WriteLog(LogTrace, L"The local server begins.");
    static Clients clients;  // these three outlive every call
    static CallerFilter filter(clients);
    static ClassObject classObject(clients);
    CoRegisterMessageFilter(&filter, nullptr);
    Microsoft::WRL::ComPtr<IClassFactory> factory;
    HRESULT result = ClassFactory::Create(IID_PPV_ARGS(&factory));
    if (SUCCEEDED(result))
        result = classObject.Register(factory.Get());
    if (FAILED(result))
        Refuse(result);
    ServeUntilOver(clients, classObject);
    WriteLog(LogTrace, L"The local server has ended.");
    return 0;
}

}  // namespace kel::program
