#include "probes/graphics/FeatureLevel.h"

#include <d3dcommon.h>

#include <string>
#include <utility>

namespace kel {

namespace {

constexpr DWORD PixelShader2 = 0x0200;  // the low half of the version
constexpr DWORD PixelShader3 = 0x0300;

Version Dotted(std::uint32_t major, std::uint32_t minor)
{
    return Version(std::to_wstring(major) + L"." + std::to_wstring(minor));
}

}  // namespace

std::optional<Version> LevelVersion(std::uint32_t level)
{
    if (level < D3D_FEATURE_LEVEL_9_1 || level > 0xFFFF)
        return {};
    return Dotted(level >> 12, level >> 8 & 0xF);
}

std::uint32_t LevelOfPixelShaders(DWORD pixelShaderVersion)
{
    const DWORD version = pixelShaderVersion & 0xFFFF;
    if (version < PixelShader2)
        return 0;
    return version < PixelShader3 ? D3D_FEATURE_LEVEL_9_1 : D3D_FEATURE_LEVEL_9_3;
}

std::optional<Version> ShaderModelOfLevel(const std::optional<Version>& level)
{
    constexpr std::pair<const wchar_t*, const wchar_t*> Promises[] = {
        {L"12.0", L"5.1"}, {L"11.0", L"5.0"}, {L"10.1", L"4.1"}, {L"10.0", L"4.0"}, {L"9.3", L"3.0"}};
    if (!level)
        return {};
    for (const auto& [minVersion, model] : Promises) {
        if (!(*level < Version(minVersion)))
            return Version(model);
    }
    return Version(L"2.0");
}

Version RayTracingVersion(std::uint32_t tier)
{
    return Dotted(tier / 10, tier % 10);
}

std::optional<Version> ShaderModelVersion(std::uint32_t model)
{
    if (model == 0)
        return {};
    return Dotted(model >> 4, model & 0xF);
}

}  // namespace kel
