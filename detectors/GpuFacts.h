#pragma once

#include "detectors/DriverIds.h"
#include "detectors/Facts.h"
#include "probes/graphics/GpuInfo.h"

namespace kel {

// Facts for which a driver may have to be loaded into this process: they are asked for when they are wanted.
constexpr unsigned GpuMemoryId = 72004;
constexpr unsigned GpuLevelId = 72008;
constexpr unsigned GpuChipId = 72014;
constexpr unsigned GpuDacId = 72015;

/// The facts of each graphics adapter.
inline constexpr FactTable GpuFacts(
    Fact{NotStored, &GpuInfo::luid}, Fact{NotStored, &GpuInfo::instanceId},
    Fact{72002, &GpuInfo::description, L"name"}, Fact{72003, &GpuInfo::deviceId, L"device id"},
    Fact{GpuMemoryId, &GpuInfo::videoMemory, L"dedicated memory"}, Fact{NotStored, &GpuInfo::driverMemory},
    Fact{72005, &GpuInfo::sharedMemory, L"shared memory"},
    Fact{GpuDriver, &GpuInfo::driverVersion, L"driver version"}, Fact{72007, &GpuInfo::vendorVersion},
    Fact{GpuLevelId, &GpuInfo::featureLevel, L"feature level"}, Fact{72009, &GpuInfo::isIntegrated},
    Fact{72010, &GpuInfo::isNvidia}, Fact{72011, &GpuInfo::isAmd}, Fact{72012, &GpuInfo::isIntel},
    Fact{72013, &GpuInfo::isVirtual}, Fact{GpuChipId, &GpuInfo::chipType, L"chip type"},
    Fact{GpuDacId, &GpuInfo::dacType, L"DAC type"}, Fact{73480, &GpuInfo::driverDate, L"driver date"},
    Fact{73481, &GpuInfo::vulkanVersion, L"Vulkan version"}, Fact{NotStored, &GpuInfo::vulkanManifest},
    Fact{NotStored, &GpuInfo::shaderModel, L"shader model"},
    Fact{NotStored, &GpuInfo::driverModel, L"driver model"}, Fact{NotStored, &GpuInfo::hasDirect3D});

using GpuDevice = decltype(GpuFacts)::Device;

}  // namespace kel
