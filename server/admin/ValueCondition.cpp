#include "server/admin/ValueCondition.h"

#include <fmt/format.h>
#include <algorithm>

namespace kel::server {

ValueCondition ValueCondition::Read(const AdminRequest& request, std::string& problem)
{
    const std::string of = request.Query("of");
    ValueCondition condition{0, request.Query("comparison"), request.Query("text"), of == "any"};
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
    else if (!of.empty() && !condition.ofAny)
        problem = "'of' has to be any.";
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
    if (!by)
        return false;
    const CatalogueValue* known = FindCatalogueValue(id);
    const std::string needed = NormalizeValue(text);
    const auto devices = ofAny ? report.Devices(id) : report.Devices(id, 1);
    return std::any_of(devices.begin(), devices.end(), [&](const std::string* value) {
        return Compare(*by, NormalizeValue(*value), needed, known ? known->soldAs : SoldAs::Nothing) ==
               Result::Pass;
    });
}

}  // namespace kel::server
