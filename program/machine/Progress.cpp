#include "program/machine/Progress.h"

#include <algorithm>
#include <string>

#include "detectors/Components.h"
#include "program/text/Output.h"
#include "verdict/Catalogue.h"

namespace kel::program {

namespace {

constexpr std::size_t LineLength = 39;  // of the longest line, and one more

void Show(const std::string& text)
{
    Output::Error().Write("\r" + text + std::string(LineLength - std::min(text.size(), LineLength), ' ') +
                          "\r");
}

}  // namespace

std::string AreaOfDetector(const std::string& detector)
{
    const auto found = std::ranges::find_if(
        CatalogueValues, [&](const CatalogueValue& value) { return value.Detector() == detector; });
    return found != CatalogueValues.end() ? found->Area() : detector;
}

Progress::Progress()
{
    if (Output::Error().IsConsole())
        Components::SetListener([](const char* detector) {
            Show(detector != nullptr ? "Reading: " + AreaOfDetector(detector) + " …" : "");
        });
}

Progress::~Progress()
{
    if (!Output::Error().IsConsole())
        return;
    Components::SetListener({});
    try {
        Show("");
    } catch (...) {
        // The line stays on the console.
    }
}

}  // namespace kel::program
