// The driver versions of the devices at index 0, which their detectors store and the software detector
// repeats.
#pragma once

namespace kel {

constexpr unsigned GpuDriverId = 72006;
constexpr unsigned NetworkDriverId = 72706;
constexpr unsigned SoundDriverId = 72804;
constexpr unsigned ScsiDriverId = 73304;

}  // namespace kel
