#pragma once

#include <optional>
#include <vector>

#include "probes/Source.h"
#include "probes/graphics/DisplayFunctions.h"
#include "probes/graphics/MonitorInfo.h"
#include "values/Count.h"
#include "values/Resolution.h"

namespace kel {

/// A picture that Windows shows on one monitor, or duplicated on several.
struct DisplayInfo {
    bool isPrimary = false;
    POINT position = {};  ///< of its upper left corner on the desktop; known when the resolution is
    Resolution resolution;
    std::optional<Count> bitsPerPixel;
    std::optional<Count> refreshRate;  ///< a second
};

/// One source's list.
struct DisplayList {
    const wchar_t* source = L"";  ///< its name for the log
    std::vector<DisplayInfo> displays;
    std::vector<MonitorInfo> monitors;
};

/// Lists the active displays and monitors. Nothing is opened, shown or changed.
class DisplayConfig : public Source {
public:
    static DisplayConfig& Instance();

    explicit DisplayConfig(DisplayFunctions newFunctions = DisplayFunctions::OfSystem());

    /// The first source that lists a display: `QueryDisplayConfig`, `EnumDisplayDevicesW` with
    /// `EnumDisplaySettingsExW`, `EnumDisplayMonitors`.
    DisplayList List() const;

    /// The list of `EnumDisplayDevicesW`, even when another source lists displays.
    DisplayList ListDevices() const;

    /// Whether the session is remote: its displays are the client's. Either `GetSystemMetrics` says so, or
    /// the session is not the one at the machine's own screen; with a virtual graphics adapter, only the
    /// latter shows it.
    bool IsRemote() const;

    /// The scale of the primary display in percent; nullopt when it is not known.
    std::optional<Count> GetPrimaryScale() const;

    /// The highest refresh rate of a display's modes with a resolution; nullopt when it is not known. It
    /// takes milliseconds, as a display has hundreds of modes.
    std::optional<Count> FindHighestRate(const std::wstring& display, const Resolution& resolution) const;

private:
    DisplayList ListPaths() const;
    DisplayList ListMonitors() const;
    bool Query(std::vector<DISPLAYCONFIG_PATH_INFO>& paths,
               std::vector<DISPLAYCONFIG_MODE_INFO>& modes) const;
    MonitorInfo ReadTarget(const DISPLAYCONFIG_PATH_TARGET_INFO& target) const;
    void ReadColor(const DISPLAYCONFIG_PATH_TARGET_INFO& target, MonitorInfo& monitor) const;
    DisplayInfo ReadSettings(const wchar_t* device) const;
    std::wstring GetDeviceName(const DISPLAYCONFIG_PATH_SOURCE_INFO& source) const;

    DisplayFunctions functions;
};

}  // namespace kel
