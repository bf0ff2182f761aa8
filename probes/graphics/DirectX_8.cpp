#include "probes/graphics/DirectX_8.h"

#include "diag/ProcessInstance.h"

namespace kel {

DirectX_8& DirectX_8::Instance()
{
    return ProcessInstance<DirectX_8>();
}

DirectX_8::DirectX_8(GraphicsFunctions newFunctions) : Direct3DSource(std::move(newFunctions), L"d3d8.dll") {}

}  // namespace kel
