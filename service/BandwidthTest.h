// Measures the download rate of the connection.
#pragma once

#include <cstdint>
#include <string>

namespace kel {

/// The rate of a download in bits per second, as "16000000 bps". Less than a millisecond counts as one.
/// @param start reading of the performance counter, like `stop`
/// @param frequency counts of the counter per second
/// @return the empty text when the counter did not work: a number below 1, or a stop that is not later
std::wstring DownloadRate(std::uint64_t bytes, std::int64_t start, std::int64_t stop, std::int64_t frequency);

/// Downloads the test file from the content host through WinINet and times the reading. After 30 seconds the
/// bytes received so far count. A status other than 200 and a truncated file are failures.
/// @return the rate as DownloadRate writes it, or the empty text when the test failed; a text of the process
/// that the next call overwrites
const std::wstring& RunBandwidthTest();

}  // namespace kel
