#pragma once

#include <string>
#include <utility>

#include "probes/Source.h"
#include "probes/graphics/GraphicsFunctions.h"

namespace kel {

/// What the probes of Direct3D's versions share.
class Direct3DSource : public Source {
public:
    /// Whether the system's folder has the version's library. Nothing is loaded for it.
    bool IsThere() const { return functions.hasLibrary(library); }

protected:
    Direct3DSource(GraphicsFunctions newFunctions, const wchar_t* newLibrary)
        : functions(std::move(newFunctions)), library(newLibrary)
    {
    }

    GraphicsFunctions functions;

private:
    const wchar_t* library;
};

}  // namespace kel
