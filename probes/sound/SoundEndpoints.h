#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <optional>
#include <vector>

#include "probes/sound/SoundInfo.h"

namespace kel {

/// The active endpoints, such as speakers and microphones, as the system's sound service lists them.
struct SoundEndpoints {
    std::optional<UINT> outputs;  ///< their number; nullopt when the service does not answer
    std::optional<UINT> inputs;
    std::optional<UINT> microphones;  ///< among the inputs; also nullopt when the form of an input is unknown
    bool isDefaultKnown = false;      ///< also true when there is no default output
    std::vector<SoundInfo> devices;   ///< the devices of the endpoints, each once
};

/// Asks the service (`IMMDeviceEnumerator`). No stream is opened, and names of endpoints are not read, since
/// people choose them. A failure is a warning in the log.
SoundEndpoints ReadSoundEndpoints();

/// The function that counts outputs where the service cannot. A test replaces it.
struct SoundFunctions {
    boost::function<UINT()> countOutputs;  ///< waveOutGetNumDevs; 0 without "winmm.dll"

    /// The system's own; its library is loaded at the first call and stays loaded.
    static SoundFunctions OfSystem();
};

}  // namespace kel
