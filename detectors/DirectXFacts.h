#pragma once

#include "detectors/Facts.h"
#include "values/Version.h"

namespace kel {

/// The facts about DirectX; the adapter is the one that a program would use.
struct DirectXInfo {
    bool works = false;              ///< Direct3D, on an adapter that is not software
    std::optional<Version> runtime;  ///< that Windows has, such as 12.0
    std::optional<Version> featureLevel;
    std::optional<Version> shaderModel;
    std::optional<Version> driverModel;
    bool has8 = false;  ///< this version of Direct3D is available; likewise the next ones
    bool has9 = false;
    bool has10 = false;
    bool has11 = false;
    bool has12 = false;
    std::optional<Version> rayTracing;  ///< 0.0 where the adapter has none
};

// Facts for which the adapter's driver may have to be loaded: they are asked for when they are wanted.
constexpr unsigned DirectXLevelId = 72203;
constexpr unsigned ShaderModelId = 72204;
constexpr unsigned RayTracingId = 73482;

/// The facts of DirectX.
inline constexpr FactTable DirectXFacts(
    Fact{72200, &DirectXInfo::works}, Fact{72202, &DirectXInfo::runtime, L"runtime"},
    Fact{DirectXLevelId, &DirectXInfo::featureLevel}, Fact{ShaderModelId, &DirectXInfo::shaderModel},
    Fact{72205, &DirectXInfo::driverModel}, Fact{72208, &DirectXInfo::has8}, Fact{72209, &DirectXInfo::has9},
    Fact{72210, &DirectXInfo::has10}, Fact{72211, &DirectXInfo::has11}, Fact{72212, &DirectXInfo::has12},
    Fact{RayTracingId, &DirectXInfo::rayTracing});

}  // namespace kel
