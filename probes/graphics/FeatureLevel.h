// Direct3D's feature levels and shader models as versions.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "values/Version.h"

namespace kel {

/// A D3D_FEATURE_LEVEL such as 0xc100 as "12.1"; nullopt for anything else, including 0.
std::optional<Version> LevelVersion(std::uint32_t level);

/// The feature level for a pixel shader version of Direct3D 9 (D3DCAPS9's PixelShaderVersion); 0 when it is
/// too old for any level.
std::uint32_t LevelOfPixelShaders(DWORD pixelShaderVersion);

/// The shader model that a feature level guarantees; nullopt without a level.
std::optional<Version> ShaderModelOfLevel(const std::optional<Version>& level);

/// A D3D12_RAYTRACING_TIER such as 11 as "1.1"; "0.0" for 0.
Version RayTracingVersion(std::uint32_t tier);

/// A shader model such as 0x51 as "5.1"; nullopt for 0.
std::optional<Version> ShaderModelVersion(std::uint32_t model);

}  // namespace kel
