#pragma once

#include <chrono>
#include <cstddef>

namespace kel {

/// Limits of exchanges, for the page that waits for them and for the host. docs/service-protocol.md lists
/// them, docs/security.md has the reasons.
struct ExchangeLimits {
    /// For all exchanges with the analysis service in one call of a member.
    static constexpr std::chrono::seconds Call{60};
    /// For each single wait in such an exchange.
    static constexpr std::chrono::seconds Wait{30};
    /// For the download of the bandwidth test, in addition to the call's limit; no connection worth measuring
    /// takes as long.
    static constexpr std::chrono::seconds Download{30};
    static constexpr std::chrono::seconds DownloadWait{10};
    /// Bytes. The service's longest answer is a page of some hundred kilobytes.
    static constexpr std::size_t Answer = std::size_t{16} << 20;
    /// Redirects of an exchange that are followed at once; later ones are slowed down.
    static constexpr int QuickRedirects = 10;
    /// Exchanges of the process that have not ended yet, including abandoned ones.
    static constexpr int AtOnce = 4;
};

}  // namespace kel
