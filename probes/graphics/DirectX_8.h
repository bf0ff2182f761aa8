#pragma once

#include "probes/graphics/Direct3DSource.h"

namespace kel {

/// Direct3D 8. Absent from 64-bit Windows; only its presence is checked.
class DirectX_8 : public Direct3DSource {
public:
    static DirectX_8& Instance();

    explicit DirectX_8(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());
};

}  // namespace kel
