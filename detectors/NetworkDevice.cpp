#include <algorithm>
#include <tuple>

#include "detectors/Detectors.h"
#include "detectors/DriverIds.h"
#include "detectors/Facts.h"
#include "probes/network/NetworkInterfaces.h"
#include "probes/setup/SetupLib.h"
#include "service/BandwidthTest.h"
#include "values/Count.h"
#include "values/StableSort.h"

namespace kel {

namespace {

constexpr FactTable AdapterFacts(
    Fact{72702, &NetworkInfo::name, L"name"}, Fact{72703, &NetworkInfo::deviceId},
    Fact{72704, &NetworkInfo::kind, L"kind"}, Fact{72705, &NetworkInfo::isOnBoard},
    Fact{NetworkDriver, &NetworkInfo::driverVersion}, Fact{72707, &NetworkInfo::isConnected, L"connection"},
    Fact{72708, &NetworkInfo::linkSpeed, L"link speed"}, Fact{NotStored, &NetworkInfo::instanceId},
    Fact{NotStored, &NetworkInfo::enumerator}, Fact{NotStored, &NetworkInfo::isHardware},
    Fact{NotStored, &NetworkInfo::hasConnector}, Fact{NotStored, &NetworkInfo::isDefaultRoute},
    Fact{NotStored, &NetworkInfo::device}, Fact{NotStored, &NetworkInfo::isOff},
    Fact{NotStored, &NetworkInfo::isInternal}, Fact{NotStored, &NetworkInfo::hasKind});
using Adapter = decltype(AdapterFacts)::Device;

/// Totals of all adapters.
struct NetworkSummary {
    bool hasAdapter = false;
    Count count = Count(0);
    std::optional<bool> hasWired;  ///< unknown when an adapter's kind is; likewise the next
    std::optional<bool> hasWireless;
};

constexpr FactTable SummaryFacts(Fact{72700, &NetworkSummary::hasAdapter},
                                 Fact{72701, &NetworkSummary::count}, Fact{72709, &NetworkSummary::hasWired},
                                 Fact{72710, &NetworkSummary::hasWireless});

constexpr unsigned BandwidthId = 71069;

bool IsSame(const NetworkInfo& one, const NetworkInfo& other)
{
    return !one.instanceId.empty() && one.instanceId == other.instanceId;
}

/// Whether an adapter is a physical one. Every test is needed: drivers of tunnels claim to be hardware,
/// adapters of virtual switches hold the addresses, and others are on a bus of their own. An unknown answer
/// excludes nothing, but one answer has to be known.
bool IsPhysical(const NetworkInfo& adapter)
{
    return (adapter.isHardware || !adapter.enumerator.empty()) && adapter.isHardware.value_or(true) &&
           adapter.hasConnector.value_or(true) && adapter.enumerator != L"ROOT" &&
           adapter.enumerator != L"SWD";
}

/// The adapter that a program would use comes first: the one with the default route, or a connected one when
/// a virtual switch or a tunnel has the route.
bool ComesBefore(const Adapter& one, const Adapter& other)
{
    const auto rank = [](const NetworkInfo& adapter) {
        return std::tuple(!adapter.isDefaultRoute, !adapter.isConnected.value_or(false),
                          std::wstring(adapter.deviceId.ToString()), adapter.device, adapter.instanceId);
    };
    return rank(one.record) < rank(other.record);
}

/// Whether an adapter is on the board, that is, internal and on the PCI bus; nullopt when one of the two is
/// unknown and the other is true.
std::optional<bool> IsOnBoard(const NetworkInfo& adapter)
{
    if (adapter.enumerator.empty())
        return {};
    return adapter.enumerator == L"PCI" ? adapter.isInternal : std::optional(false);
}

/// The physical adapters that work.
struct AdapterList {
    std::vector<Adapter> adapters;
    bool isAnswered = false;  ///< a source gave its list, even an empty one
};

AdapterList ListAdapters(const NetworkFunctions& functions)
{
    std::vector<NetworkInfo> devices;
    const bool hasDevices = SetupLib::Instance().GetNetworkDeviceInfo(devices);
    const std::optional<DWORD> defaultRoute = FindDefaultRoute(functions);
    const std::vector<NetworkInfo> table = ReadInterfaceTable(functions, defaultRoute);
    std::vector<NetworkInfo> addresses = ReadAdapterAddresses(functions, defaultRoute);
    for (NetworkInfo& adapter : addresses) {
        // The addresses have no medium, by which the table distinguishes Bluetooth, reported as Ethernet,
        // from Ethernet.
        if (std::ranges::any_of(table, [&](const NetworkInfo& row) { return IsSame(row, adapter); }))
            adapter.SetKind(MediaKind::Unknown);
    }
    std::vector<Adapter> adapters;
    AdapterFacts.Join(adapters, devices, L"the Setup API", &IsSame);
    AdapterFacts.Join(adapters, table, L"the interface table", &IsSame);
    AdapterFacts.Join(adapters, addresses, L"the adapters' addresses", &IsSame);
    std::erase_if(adapters,
                  [](const Adapter& adapter) { return adapter.record.isOff || !IsPhysical(adapter.record); });
    for (Adapter& adapter : adapters)
        adapter.record.isOnBoard = IsOnBoard(adapter.record);
    SortStably(adapters, &ComesBefore);
    return {adapters, hasDevices || !table.empty() || !addresses.empty()};
}

/// Whether there is an adapter of the kind; nullopt when none is known to be, and the kind of one is unknown.
std::optional<bool> HasKind(const AdapterList& list, const wchar_t* kind)
{
    const auto isOfKind = [kind](const Adapter& adapter) { return adapter.record.kind == Name(kind); };
    const auto hasKind = [](const Adapter& adapter) { return adapter.record.hasKind; };
    if (std::ranges::any_of(list.adapters, isOfKind))
        return true;
    return list.isAnswered && std::ranges::all_of(list.adapters, hasKind) ? std::optional(false)
                                                                          : std::nullopt;
}

void StoreAdapters(const AdapterList& list)
{
    const auto& adapters = list.adapters;
    SummaryFacts.Store({!adapters.empty(), Count(static_cast<std::int64_t>(adapters.size())),
                        HasKind(list, Wired), HasKind(list, Wireless)});
    StoreList(AdapterFacts, adapters, L"NetworkDevice");
}

}  // namespace

bool NetworkDevice::Detect()
{
    return Detect(NetworkFunctions::OfSystem());
}

bool NetworkDevice::Detect(const NetworkFunctions& functions)
{
    return Guarded(L"kel::NetworkDevice::Detect", L"Error in NetworkDevice detection.", [&functions] {
        StoreDefaults(SummaryFacts, AdapterFacts);
        StoreAdapters(ListAdapters(functions));

        if (!Session::Current().IsWanted(GroupID(BandwidthId)))
            return;
        const std::wstring& rate = RunBandwidthTest();
        // The rate has its unit already; support tools expect the line with both.
        WriteLog(LogTrace, L"Network speed is: ", rate, L" bps");
        AddValue(BandwidthId, Bandwidth(rate));
    });
}

StoredFacts NetworkDevice::ListFacts()
{
    StoredFacts facts = CollectFacts(SummaryFacts, AdapterFacts);
    facts.push_back({BandwidthId, TypeName<Bandwidth>});
    return facts;
}

}  // namespace kel
