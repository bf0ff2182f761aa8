#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/kit/Table.h"
#include "verdict/Catalogue.h"

namespace kel::server {

Answer ShowValues(const AdminRequest& request)
{
    Table table("Values by their ids", {{"Id"}, {"Detector"}, {"What"}, {"Note"}});
    for (const CatalogueValue& value : CatalogueValues)
        table.Add({std::to_string(value.id), value.Detector(), value.Name(), value.Caution()});
    return Page(request, "Values",
                Html::Element("p", {{"class", "lead"}},
                              "What requirements can ask for, by the number that stands in them as \"id\".") +
                    table.Done(""));
}

}  // namespace kel::server
