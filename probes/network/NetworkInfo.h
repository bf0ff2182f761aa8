#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "diag/SourceFailures.h"
#include "values/Bandwidth.h"
#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Version.h"

namespace kel {

/// The kind of a network connection; the numbers are the analysis service's.
enum class MediaKind : DWORD { Unknown = 0, Lan = 1, Wireless = 256 };

/// The kinds as they are stored.
inline constexpr const wchar_t* Wired = L"wired";
inline constexpr const wchar_t* Wireless = L"wireless";

/// One source's facts about a network adapter; an empty text is unknown.
struct NetworkInfo {
    Name name;
    DeviceID deviceId;
    std::optional<bool> isOnBoard;  ///< part of the computer, on any PCI bus
    std::optional<Version> driverVersion;
    std::wstring instanceId;  ///< of the network configuration, a GUID in braces, in upper case
    bool hasKind = false;     ///< the kind is known, even if it is neither of the two
    Name kind;                ///< empty when unknown, and for other kinds such as Bluetooth
    std::wstring device;      ///< its instance id in upper case; can hold an address, so it is not stored
    std::wstring enumerator;  ///< the bus or driver that lists the device, such as "PCI"
    bool isOff = false;       ///< switched off, or the system reports a problem with it
    std::optional<bool> isInternal;  ///< part of the computer, by its container
    std::optional<bool> isHardware;
    std::optional<bool> hasConnector;
    std::optional<bool> isConnected;
    std::optional<Bandwidth> linkSpeed;
    bool isDefaultRoute = false;          ///< traffic to the Internet goes through it
    std::vector<SourceFailure> failures;  ///< why its facts are incomplete

    /// Sets the number and the text of the kind.
    void SetKind(MediaKind newKind)
    {
        kind = newKind == MediaKind::Lan ? Wired : newKind == MediaKind::Wireless ? Wireless : L"";
    }
};

}  // namespace kel
