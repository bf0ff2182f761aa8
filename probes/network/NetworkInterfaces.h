#pragma once

#include <winsock2.h>

#include <windows.h>

#include <ws2ipdef.h>

#include <iphlpapi.h>

#include <boost/function.hpp>
#include <optional>
#include <vector>

#include "probes/network/NetworkInfo.h"

namespace kel {

/// The functions of "iphlpapi.dll" for network interfaces; each may be missing. A test replaces them.
struct NetworkFunctions {
    boost::function<DWORD(MIB_IF_TABLE2**)> getTable;  ///< GetIfTable2
    boost::function<void(void*)> freeTable;            ///< FreeMibTable
    boost::function<ULONG(ULONG, ULONG, void*, IP_ADAPTER_ADDRESSES*, ULONG*)>
        getAddresses;                                            ///< GetAdaptersAddresses
    boost::function<DWORD(sockaddr*, DWORD*)> getBestInterface;  ///< GetBestInterfaceEx

    /// The system's own. The library stays loaded.
    static NetworkFunctions OfSystem();
};

/// The number of the interface that has the default route; nullopt without one. The query uses an address
/// from the documentation ranges, to which nothing is sent.
std::optional<DWORD> FindDefaultRoute(const NetworkFunctions& functions);

/// Lists the interfaces (`GetIfTable2`) without those of filters, which repeat an adapter's interface.
/// Addresses are not read.
/// @param defaultRoute as FindDefaultRoute gives it
/// @return none, with a warning in the log, when the system gives no table
std::vector<NetworkInfo> ReadInterfaceTable(const NetworkFunctions& functions,
                                            std::optional<DWORD> defaultRoute);

/// Lists the adapters that have addresses (`GetAdaptersAddresses`), without the addresses. Parameters and
/// result as for ReadInterfaceTable.
std::vector<NetworkInfo> ReadAdapterAddresses(const NetworkFunctions& functions,
                                              std::optional<DWORD> defaultRoute);

}  // namespace kel
