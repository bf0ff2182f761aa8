#include "server/admin/ValueCondition.h"

#include <fmt/format.h>

namespace kel::server {

ValueCondition ValueCondition::Read(const AdminRequest& request, std::string& problem)
{
    ValueCondition condition{0, request.Query("comparison"), request.Query("text")};
    const std::string id = request.Query("value");
    if (id.empty()) {
        if (!condition.comparison.empty() && !condition.text.empty())
            problem = "A comparison belongs to a value: fill in its id, too.";
        return {};
    }
    const std::int64_t number = WholeNumber(id);
    const Comparison* comparison = ParseComparison(condition.comparison);
    if (number < 1 || number > INT32_MAX)
        problem = "'value' has to be the id of a value.";
    else if (!comparison)
        problem = "'comparison' has to be a comparison of requirements, such as at least or contains.";
    else if (const auto reason = comparison->unsatisfiableReason(condition.text); !reason.empty())
        problem = fmt::format("No value could meet this: '{}' {}.", comparison->name, reason);
    else
        condition.id = static_cast<int>(number);
    return condition;
}

bool ValueCondition::Holds(const Report& report) const
{
    const Comparison* by = ParseComparison(comparison);
    const std::string* value = report.Value(id);
    const CatalogueValue* known = FindCatalogueValue(id);
    return by && value &&
           Compare(*by, NormalizeValue(*value), NormalizeValue(text),
                   known ? known->soldAs : SoldAs::Nothing) == Result::Pass;
}

}  // namespace kel::server
