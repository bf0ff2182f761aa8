#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <optional>
#include <vector>

#include "probes/sound/SoundInfo.h"

namespace kel {

/// What the system's sound service says of the endpoints that are active, such as speakers and microphones.
struct SoundEndpoints {
    std::optional<UINT> outputs;  ///< how many; nothing when the service does not tell
    std::optional<UINT> inputs;
    bool isDefaultKnown = false;     ///< also known when there is no default output
    std::vector<SoundInfo> devices;  ///< that they belong to, each once
};

/// Asks the service (`IMMDeviceEnumerator`). No stream is opened, and no name of an endpoint is read, since
/// people choose them. A failure leaves a warning in the log.
SoundEndpoints ReadSoundEndpoints();

/// The function that counts outputs where the service does not. A test puts its own in its place.
struct SoundFunctions {
    boost::function<UINT()> countOutputs;  ///< waveOutGetNumDevs; 0 without "winmm.dll"

    /// The system's own, whose library is loaded when it is first asked, and stays.
    static SoundFunctions OfSystem();
};

}  // namespace kel
