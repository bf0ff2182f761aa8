#include "verdict/Catalogue.h"

#include <unordered_map>

namespace kel {

const CatalogueValue* FindCatalogueValue(int id)
{
    static const auto values = [] {
        std::unordered_map<int, const CatalogueValue*> all;
        for (const CatalogueValue& value : CatalogueValues)
            all[value.id] = &value;
        return all;
    }();
    const auto found = values.find(id);
    return found == values.end() ? nullptr : found->second;
}

}  // namespace kel
