#include "verdict/files/EmptyValues.h"

#include <algorithm>

#include "verdict/Catalogue.h"

namespace kel {

namespace {

/// Why a value is empty, as far as the snapshot shows it.
std::string ReasonFor(const Fact* fact, int group, const Snapshot& snapshot)
{
    const CatalogueValue* known = FindCatalogueValue(group);
    if (known != nullptr && known->existence != 0 && snapshot.Text(known->existence) == "No")
        return "not installed";
    if (fact == nullptr)
        return "it is not among the values";
    return fact->reason.empty() ? "the reason is not known" : fact->reason;
}

}  // namespace

std::string EmptyValue::Text() const
{
    return name + " (" + std::to_string(group) + "): " + reason;
}

std::vector<EmptyValue> FindEmptyValues(const Requirements& requirements, const Verdict& verdict,
                                        const Snapshot& snapshot)
{
    std::vector<EmptyValue> found;
    for (std::size_t place = 0; place < std::min(requirements.lines.size(), verdict.lines.size()); ++place) {
        if (verdict.lines[place].result == Result::Pass)
            continue;
        for (const int group : requirements.lines[place].Groups()) {
            const Fact* fact = snapshot.Find(group);
            if (fact == nullptr || fact->text.empty())
                found.push_back({verdict.lines[place].label, group,
                                 NameOf(fact != nullptr ? *fact : Fact{group, 0, "", ""}),
                                 ReasonFor(fact, group, snapshot)});
        }
    }
    return found;
}

}  // namespace kel
