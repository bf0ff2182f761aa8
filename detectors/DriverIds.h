// The ids of driver versions that the software detector repeats: what other detectors store before it runs.
#pragma once

namespace kel {

constexpr unsigned GpuDriver = 72006;
constexpr unsigned NetworkDriver = 72706;
constexpr unsigned SoundDriver = 72804;

}  // namespace kel
