#include "probes/network/NetworkInterfaces.h"

#include <ws2tcpip.h>

#include <ipifcons.h>

#include <array>
#include <memory>
#include <span>

#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "platform/Library.h"
#include "probes/Attempt.h"
#include "values/Junk.h"
#include "values/Quantity.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr ULONG WithoutLists = GAA_FLAG_SKIP_UNICAST | GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST |
                               GAA_FLAG_SKIP_DNS_SERVER | GAA_FLAG_SKIP_FRIENDLY_NAME;
constexpr ULONG FirstSize = 15000;  // bytes, as the system's documentation recommends
/// The size may grow between two calls as adapters appear; this many attempts are enough.
constexpr int MaxTries = 5;

/// Types of interfaces, by IANA's numbers.
constexpr IFTYPE GsmBroadband = 243;
constexpr IFTYPE CdmaBroadband = 244;

constexpr std::array<const wchar_t*, 4> SpeedUnits = {L"bps", L"Kbps", L"Mbps", L"Gbps"};

MediaKind KindOf(IFTYPE type, NDIS_PHYSICAL_MEDIUM medium)
{
    switch (medium) {
        case NdisPhysicalMediumWirelessLan:
        case NdisPhysicalMediumNative802_11:
        case NdisPhysicalMediumWirelessWan:
            return MediaKind::Wireless;
        case NdisPhysicalMediumBluetooth:  // its interface type is that of Ethernet
            return MediaKind::Unknown;
        default:
            break;
    }
    switch (type) {
        case IF_TYPE_ETHERNET_CSMACD:
            return MediaKind::Lan;
        case IF_TYPE_IEEE80211:
        case GsmBroadband:
        case CdmaBroadband:
            return MediaKind::Wireless;
        default:
            return MediaKind::Unknown;
    }
}

/// Zero and all ones, of either width, stand for an unknown speed. Drivers count in steps of 1000 and the
/// value in steps of 1024; the conversion through text keeps the number that people know.
std::optional<Bandwidth> SpeedOf(ULONG64 bitsPerSecond)
{
    if ((bitsPerSecond & (bitsPerSecond + 1)) == 0)
        return std::nullopt;
    std::wstring text;
    return Bandwidth(
        WriteQuantity(bitsPerSecond, 1000.0, SpeedUnits, L"Error while reading a link speed.", text));
}

std::optional<bool> IsUp(IF_OPER_STATUS status)
{
    switch (status) {
        case IfOperStatusUp:
            return true;
        case IfOperStatusDown:
        case IfOperStatusNotPresent:
        case IfOperStatusLowerLayerDown:
            return false;
        default:
            return std::nullopt;
    }
}

std::wstring TextOf(const GUID& guid)
{
    std::array<wchar_t, 39> text{};
    StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
    return text.data();
}

NetworkInfo InfoOf(const MIB_IF_ROW2& row)
{
    NetworkInfo info;
    info.name = Name(TidyText({row.Description, wcsnlen(row.Description, std::size(row.Description))}));
    info.instanceId = TextOf(row.InterfaceGuid);
    info.SetKind(KindOf(row.Type, row.PhysicalMediumType));
    info.hasKind = true;
    info.isHardware = row.InterfaceAndOperStatusFlags.HardwareInterface != 0;
    info.hasConnector = row.InterfaceAndOperStatusFlags.ConnectorPresent != 0;
    info.isConnected = row.MediaConnectState == MediaConnectStateUnknown
                           ? IsUp(row.OperStatus)
                           : row.MediaConnectState == MediaConnectStateConnected;
    info.linkSpeed = SpeedOf(row.TransmitLinkSpeed);
    return info;
}

NetworkInfo InfoOf(const IP_ADAPTER_ADDRESSES& adapter)
{
    NetworkInfo info;
    info.name = Name(adapter.Description != nullptr ? TidyText(adapter.Description) : L"");
    const std::string_view instanceId = adapter.AdapterName != nullptr ? adapter.AdapterName : "";
    info.instanceId = ToUpper(std::wstring(instanceId.begin(), instanceId.end()));
    info.SetKind(KindOf(adapter.IfType, NdisPhysicalMediumUnspecified));
    info.hasKind = true;
    info.isConnected = IsUp(adapter.OperStatus);
    info.linkSpeed = SpeedOf(adapter.TransmitLinkSpeed);
    return info;
}

}  // namespace

NetworkFunctions NetworkFunctions::OfSystem()
{
    constexpr const wchar_t* Library = L"iphlpapi.dll";
    NetworkFunctions functions;
    functions.getTable = PermanentFunction<decltype(GetIfTable2)>(Library, "GetIfTable2");
    functions.freeTable = PermanentFunction<decltype(FreeMibTable)>(Library, "FreeMibTable");
    functions.getAddresses =
        PermanentFunction<decltype(GetAdaptersAddresses)>(Library, "GetAdaptersAddresses");
    functions.getBestInterface =
        PermanentFunction<decltype(GetBestInterfaceEx)>(Library, "GetBestInterfaceEx");
    return functions;
}

std::optional<DWORD> FindDefaultRoute(const NetworkFunctions& functions)
{
    std::optional<DWORD> found;
    if (!functions.getBestInterface)
        return found;
    Attempt(L"Error while looking for the default route.", [&] {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.S_un.S_un_b = {192, 0, 2, 1};
        sockaddr_in6 longAddress{};
        longAddress.sin6_family = AF_INET6;
        longAddress.sin6_addr = {{{0x20, 0x01, 0x0D, 0xB8}}};
        DWORD index = 0;
        if (functions.getBestInterface(reinterpret_cast<sockaddr*>(&address), &index) == NO_ERROR ||
            functions.getBestInterface(reinterpret_cast<sockaddr*>(&longAddress), &index) == NO_ERROR)
            found = index;
    });
    return found;
}

std::vector<NetworkInfo> ReadInterfaceTable(const NetworkFunctions& functions,
                                            std::optional<DWORD> defaultRoute)
{
    std::vector<NetworkInfo> interfaces;
    if (!functions.getTable || !functions.freeTable) {
        FailureScope::Note(L"GetIfTable2", ERROR_PROC_NOT_FOUND);
        return interfaces;
    }
    Attempt(L"Error in reading the interface table.", [&] {
        MIB_IF_TABLE2* read = nullptr;
        const DWORD error = functions.getTable(&read);
        const std::unique_ptr<MIB_IF_TABLE2, boost::function<void(void*)>> table(read, functions.freeTable);
        if (error != NO_ERROR || !table) {
            WriteLog(LogWarning, L"GetIfTable2 failed with error: ", error);
            FailureScope::Note(L"GetIfTable2", error);
            return;
        }
        for (const MIB_IF_ROW2& row : std::span(&table->Table[0], table->NumEntries)) {
            if (row.InterfaceAndOperStatusFlags.FilterInterface)
                continue;
            interfaces.push_back(InfoOf(row));
            interfaces.back().isDefaultRoute = row.InterfaceIndex == defaultRoute;
        }
    });
    return interfaces;
}

std::vector<NetworkInfo> ReadAdapterAddresses(const NetworkFunctions& functions,
                                              std::optional<DWORD> defaultRoute)
{
    std::vector<NetworkInfo> adapters;
    if (!functions.getAddresses) {
        FailureScope::Note(L"GetAdaptersAddresses", ERROR_PROC_NOT_FOUND);
        return adapters;
    }
    Attempt(L"Error in reading the adapters' addresses.", [&] {
        std::vector<IP_ADAPTER_ADDRESSES> buffer;  // of this type for its alignment
        ULONG size = FirstSize;
        ULONG error = ERROR_BUFFER_OVERFLOW;
        for (int tries = 0; tries < MaxTries && error == ERROR_BUFFER_OVERFLOW; ++tries) {
            buffer.resize(size / sizeof(IP_ADAPTER_ADDRESSES) + 1);
            size = static_cast<ULONG>(buffer.size() * sizeof(IP_ADAPTER_ADDRESSES));
            error = functions.getAddresses(AF_UNSPEC, WithoutLists, nullptr, buffer.data(), &size);
        }
        if (error != NO_ERROR) {
            if (error != ERROR_NO_DATA) {
                WriteLog(LogWarning, L"GetAdaptersAddresses failed with error: ", error);
                FailureScope::Note(L"GetAdaptersAddresses", error);
            }
            return;
        }
        for (const IP_ADAPTER_ADDRESSES* adapter = buffer.data(); adapter != nullptr;
             adapter = adapter->Next) {
            adapters.push_back(InfoOf(*adapter));
            adapters.back().isDefaultRoute =
                adapter->IfIndex == defaultRoute || adapter->Ipv6IfIndex == defaultRoute;
        }
    });
    return adapters;
}

}  // namespace kel
