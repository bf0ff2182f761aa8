#include <algorithm>

#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "probes/graphics/DisplayConfig.h"

namespace kel {

namespace {

struct GraphicsTotals {
    bool isThere = false;
    std::int32_t count = 0;
    bool isRemote = false;
};

constexpr FactTable Totals(Fact{72400, &GraphicsTotals::isThere}, Fact{72401, &GraphicsTotals::count},
                           Fact{72406, &GraphicsTotals::isRemote});

struct GraphicsInfo {
    Resolution resolution;  ///< of the primary display, as the next two
    std::optional<Count> bitsPerPixel;
    std::optional<Count> refreshRate;
    Resolution desktop;
    std::optional<Count> scale;  ///< of the primary display, percent
};

constexpr FactTable Facts(Fact{72402, &GraphicsInfo::resolution, L"resolution"},
                          Fact{72403, &GraphicsInfo::bitsPerPixel, L"bits for a pixel"},
                          Fact{72404, &GraphicsInfo::refreshRate, L"refresh rate"},
                          Fact{72405, &GraphicsInfo::desktop, L"desktop"}, Fact{73490, &GraphicsInfo::scale});

/// The bounding box of all displays; unknown when the size of one is unknown.
Resolution Around(const std::vector<DisplayInfo>& displays)
{
    RECT box = {};  // the primary display's corner is in it
    for (const DisplayInfo& display : displays) {
        if (!display.resolution.HasValue())
            return {};
        const POINT corner = display.position;
        box.left = std::min(box.left, corner.x);
        box.top = std::min(box.top, corner.y);
        box.right = std::max(box.right, corner.x + static_cast<LONG>(display.resolution.Width()));
        box.bottom = std::max(box.bottom, corner.y + static_cast<LONG>(display.resolution.Height()));
    }
    return {static_cast<std::uint32_t>(box.right - box.left),
            static_cast<std::uint32_t>(box.bottom - box.top)};
}

GraphicsInfo Describe(const std::vector<DisplayInfo>& displays)
{
    GraphicsInfo info;
    const auto primary = std::ranges::find_if(displays, &DisplayInfo::isPrimary);
    if (primary != displays.end()) {
        info.resolution = primary->resolution;
        info.bitsPerPixel = primary->bitsPerPixel;
        info.refreshRate = primary->refreshRate;
    }
    if (!displays.empty())
        info.desktop = Around(displays);
    return info;
}

}  // namespace

bool Graphics::Detect()
{
    return Detect(DisplayConfig::Instance());
}

bool Graphics::Detect(const DisplayConfig& config)
{
    return Guarded(L"kel::Graphics::Detect", L"Error in Graphics detection.", [&config] {
        StoreDefaults(Totals, Facts);
        const DisplayList list = config.List();
        const std::vector<DisplayInfo>& displays = list.displays;
        Totals.Store({!displays.empty(), static_cast<std::int32_t>(displays.size()), config.IsRemote()});
        decltype(Facts)::Device merged;
        Facts.Merge(merged, Describe(displays), list.source);
        if (const GraphicsInfo& known = merged.record;
            !displays.empty() &&
            (!known.resolution.HasValue() || !known.bitsPerPixel || !known.refreshRate)) {
            const DisplayList further = config.ListDevices();
            Facts.Merge(merged, Describe(further.displays), further.source);
        }
        if (!displays.empty())
            merged.record.scale = config.GetPrimaryScale();
        Facts.Store(merged, L"Graphics");
    });
}

StoredFacts Graphics::ListFacts()
{
    return CollectFacts(Totals, Facts);
}

}  // namespace kel
