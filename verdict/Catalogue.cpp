#include "verdict/Catalogue.h"

#include <algorithm>

namespace kel {

const CatalogueValue* FindCatalogueValue(int id)
{
    const auto found = std::find_if(CatalogueValues.begin(), CatalogueValues.end(),
                                    [id](const CatalogueValue& value) { return value.id == id; });
    return found == CatalogueValues.end() ? nullptr : &*found;
}

}  // namespace kel
