// The driver versions that detectors store and the software detector, which runs after them, repeats.
#pragma once

namespace kel {

constexpr unsigned GpuDriver = 72006;
constexpr unsigned NetworkDriver = 72706;
constexpr unsigned SoundDriver = 72804;

}  // namespace kel
