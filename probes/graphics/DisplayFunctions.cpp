#include "probes/graphics/DisplayFunctions.h"

#include "platform/Library.h"

namespace kel {

namespace {

using SetAwareness = HANDLE WINAPI(HANDLE);

/// While it exists, the system reports physical pixels to this thread.
class PhysicalPixels {
public:
    PhysicalPixels()
        : set(FindLoadedFunction<SetAwareness>(L"user32.dll", "SetThreadDpiAwarenessContext")),
          previous(set != nullptr ? set(PerMonitor()) : nullptr)
    {
    }
    PhysicalPixels(const PhysicalPixels&) = delete;
    PhysicalPixels& operator=(const PhysicalPixels&) = delete;
    ~PhysicalPixels()
    {
        if (previous != nullptr)
            set(previous);
    }

    bool AreReported() const { return previous != nullptr; }

private:
    /// DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE, which not every platform's headers have.
    static HANDLE PerMonitor() { return reinterpret_cast<HANDLE>(static_cast<INT_PTR>(-3)); }

    SetAwareness* set;
    HANDLE previous;
};

BOOL CALLBACK Append(HMONITOR monitor, HDC, LPRECT, LPARAM list)
{
    MONITORINFO info = {};
    info.cbSize = sizeof(info);
    if (GetMonitorInfoW(monitor, &info))
        reinterpret_cast<std::vector<MONITORINFO>*>(list)->push_back(info);
    return TRUE;
}

std::vector<MONITORINFO> ListMonitors()
{
    std::vector<MONITORINFO> monitors;
    const PhysicalPixels pixels;
    EnumDisplayMonitors(nullptr, nullptr, &Append, reinterpret_cast<LPARAM>(&monitors));
    if (!pixels.AreReported()) {
        for (MONITORINFO& monitor : monitors)
            monitor.rcMonitor = {};
    }
    return monitors;
}

std::optional<DWORD> GetSession()
{
    DWORD session = 0;
    return ProcessIdToSessionId(GetCurrentProcessId(), &session) ? std::optional(session) : std::nullopt;
}

std::optional<UINT> GetPrimaryDpi()
{
    using Get = HRESULT WINAPI(HMONITOR, int, UINT*, UINT*);
    const PhysicalPixels pixels;
    auto* const get = PermanentFunction<Get>(L"shcore.dll", "GetDpiForMonitor");
    constexpr int EffectiveDpi = 0;
    UINT horizontal = 0;
    UINT vertical = 0;
    if (!pixels.AreReported() || get == nullptr ||
        FAILED(
            get(MonitorFromPoint({0, 0}, MONITOR_DEFAULTTOPRIMARY), EffectiveDpi, &horizontal, &vertical)) ||
        horizontal == 0)
        return std::nullopt;
    return horizontal;
}

}  // namespace

DisplayFunctions DisplayFunctions::OfSystem()
{
    return {&GetDisplayConfigBufferSizes,
            &QueryDisplayConfig,
            &DisplayConfigGetDeviceInfo,
            &EnumDisplayDevicesW,
            &EnumDisplaySettingsExW,
            &ListMonitors,
            &GetSystemMetrics,
            &GetSession,
            &GetPrimaryDpi};
}

}  // namespace kel
