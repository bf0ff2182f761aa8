#include "server/admin/ValueNames.h"

#include <charconv>

#include "verdict/Catalogue.h"

namespace kel::server {

std::string NameOfValue(std::string_view id)
{
    int number = 0;
    const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), number);
    const CatalogueValue* value =
        error == std::errc() && end == id.data() + id.size() ? FindCatalogueValue(number) : nullptr;
    return value ? std::string(value->Detector()).append(": ").append(value->Name()) : std::string();
}

}  // namespace kel::server
