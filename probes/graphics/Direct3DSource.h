#pragma once

#include <string>
#include <utility>

#include "probes/Source.h"
#include "probes/graphics/GraphicsFunctions.h"

namespace kel {

/// Common base of the probes of the Direct3D versions.
class Direct3DSource : public Source {
public:
    /// Whether the system's folder has the version's library. The library is not loaded.
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
