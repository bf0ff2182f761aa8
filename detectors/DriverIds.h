// The ids of driver versions that other detectors store first, and the software detector repeats.
#pragma once

namespace kel {

constexpr unsigned GpuDriver = 72006;
constexpr unsigned NetworkDriver = 72706;
constexpr unsigned SoundDriver = 72804;

}  // namespace kel
