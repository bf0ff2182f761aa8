// The levels of Direct3D's features and shaders as versions.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "values/Version.h"

namespace kel {

/// A D3D_FEATURE_LEVEL, such as 0xc100, as "12.1"; nothing for a number that is none, 0 before all.
std::optional<Version> LevelVersion(std::uint32_t level);

/// The level that an adapter has whose pixel shaders are told by Direct3D 9 (D3DCAPS9's PixelShaderVersion);
/// 0 when they are too old for any.
std::uint32_t LevelOfPixelShaders(DWORD pixelShaderVersion);

/// The shader model that a level promises at least; nothing for no level.
std::optional<Version> ShaderModelOfLevel(const std::optional<Version>& level);

/// A shader model, such as 0x51, as "5.1"; nothing for 0.
std::optional<Version> ShaderModelVersion(std::uint32_t model);

}  // namespace kel
