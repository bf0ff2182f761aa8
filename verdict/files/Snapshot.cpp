#include "verdict/files/Snapshot.h"

#include <map>
#include <memory>
#include <utility>

#include "verdict/Catalogue.h"
#include "verdict/text/Utf8.h"

namespace kel {

std::string NameOf(const Fact& fact)
{
    const CatalogueValue* known = FindCatalogueValue(fact.id);
    const std::string name = known != nullptr ? known->Name() : "";
    const bool isIndexed = known != nullptr ? known->hasIndexes : fact.index != 0;
    return isIndexed ? name + " [" + std::to_string(fact.index) + "]" : name;
}

const Fact* Snapshot::Find(int id, int index) const
{
    for (const std::vector<Fact>* list : {&facts, &missing}) {
        for (const Fact& fact : *list) {
            if (fact.id == id && fact.index == index)
                return &fact;
        }
    }
    return nullptr;
}

std::string Snapshot::Text(int id) const
{
    const Fact* fact = Find(id);
    return fact != nullptr ? fact->text : std::string();
}

ValueLookup Snapshot::Lookup() const&
{
    const auto values = std::make_shared<std::map<std::pair<int, int>, const Fact*>>();
    for (const Fact& fact : facts)
        (*values)[{fact.id, fact.index}] = &fact;
    return [values](int group, int index) -> std::optional<std::string> {
        const auto found = values->find({group, index});
        if (found == values->end())
            return std::nullopt;
        return XmlText(found->second->text);
    };
}

}  // namespace kel
