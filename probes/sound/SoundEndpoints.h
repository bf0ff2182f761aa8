#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <optional>
#include <vector>

#include "probes/sound/SoundInfo.h"

namespace kel {

/// The active endpoints, such as speakers and microphones, as the system's sound service lists them.
struct SoundEndpoints {
    std::optional<UINT> outputs;  ///< how many; nullopt when the service does not answer
    std::optional<UINT> inputs;
    std::optional<UINT> microphones;  ///< among the inputs; nullopt, too, when one's form is unknown
    bool isDefaultKnown = false;      ///< true, too, when there is no default output
    std::vector<SoundInfo> devices;   ///< that they belong to, each once
};

/// Asks the service (`IMMDeviceEnumerator`). No stream is opened, and names of endpoints are not read, since
/// people choose them. A failure is a warning in the log.
SoundEndpoints ReadSoundEndpoints();

/// The function that counts outputs where the service cannot. A test replaces it.
struct SoundFunctions {
    boost::function<UINT()> countOutputs;  ///< waveOutGetNumDevs; 0 without "winmm.dll"

    /// The system's own, whose library is loaded when it is first asked, and stays.
    static SoundFunctions OfSystem();
};

}  // namespace kel
