// The recorded EDIDs in tests/edids.txt.
#pragma once

#include <fstream>
#include <numeric>
#include <string>
#include <vector>

#include "probes/graphics/MonitorInfo.h"
#include "support/TestFiles.h"

namespace kel::test {

using Bytes = std::vector<BYTE>;

struct Edid {
    std::string source;
    std::wstring answer;  ///< as ShowEdid shows it
    Bytes bytes;
};

/// name|id|native resolution|diagonal|width|height|year
inline std::wstring ShowEdid(const MonitorInfo& monitor)
{
    std::wstring shown = monitor.name.ToString() + std::wstring(L"|") + monitor.deviceId.ToString() + L"|" +
                         monitor.nativeResolution.ToString();
    for (const auto& number : {monitor.diagonal, monitor.width, monitor.height, monitor.year})
        shown += std::wstring(L"|") + (number ? number->ToString() : L"");
    return shown;
}

/// Corrects the checksum after a change.
inline Bytes Summed(Bytes bytes)
{
    bytes[127] = static_cast<BYTE>(-std::accumulate(bytes.begin(), bytes.begin() + 127, 0));
    return bytes;
}

/// Hexadecimal digits as bytes.
inline Bytes BytesOf(const std::string& digits)
{
    Bytes bytes;
    for (std::size_t place = 0; place + 1 < digits.size(); place += 2)
        bytes.push_back(static_cast<BYTE>(std::stoi(digits.substr(place, 2), nullptr, 16)));
    return bytes;
}

inline std::vector<Edid> ReadEdids()
{
    std::vector<Edid> edids;
    std::ifstream file(TestFile(KEL_EDIDS));
    for (std::string line; std::getline(file, line);) {
        const std::size_t bar = line.find('|');
        if (line.starts_with('#'))
            continue;
        if (bar != std::string::npos)
            edids.push_back(
                {line.substr(0, bar), {line.begin() + static_cast<int>(bar) + 1, line.end()}, {}});
        const Bytes bytes = BytesOf(bar == std::string::npos ? line : "");
        edids.back().bytes.insert(edids.back().bytes.end(), bytes.begin(), bytes.end());
    }
    return edids;
}

}  // namespace kel::test
