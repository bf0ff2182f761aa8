#pragma once

#include "probes/graphics/Direct3DSource.h"

namespace kel {

/// Direct3D 8. 64-bit Windows has it no more, so it is asked for nothing but whether it is there.
class DirectX_8 : public Direct3DSource {
public:
    static DirectX_8& Instance();

    explicit DirectX_8(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());
};

}  // namespace kel
