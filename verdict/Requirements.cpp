#include "verdict/Requirements.h"

#include <algorithm>
#include <exception>

#include "verdict/Catalogue.h"
#include "verdict/RequirementsReader.h"
#include "verdict/text/Text.h"

namespace kel {

namespace {

void AddOnce(std::vector<int>& groups, int group)
{
    if (std::find(groups.begin(), groups.end(), group) == groups.end())
        groups.push_back(group);
}

}  // namespace

std::string Condition::Text() const
{
    std::string text(comparison->name);
    text.append(" ").append(needed);
    return std::string(Trim(text));
}

std::string Alternative::Text() const
{
    if (!label.empty())
        return label;
    std::string text;
    for (const Condition& condition : allOf)
        text += (text.empty() ? "" : " and ") + condition.Text();
    return text + (ofAny ? " (any of them)" : "");
}

std::string Requirement::Needed() const
{
    std::string text;
    for (const Alternative& alternative : anyOf)
        text += (text.empty() ? "" : ", or ") + alternative.Text();
    return text;
}

std::vector<int> Requirement::Groups() const
{
    std::vector<int> groups;
    for (const Alternative& alternative : anyOf) {
        for (const Condition& condition : alternative.allOf)
            AddOnce(groups, condition.group);
    }
    return groups;
}

Requirements Requirements::Read(std::string_view text)
{
    return ReadRequirements(text, nullptr);
}

Requirements Requirements::ReadPartly(std::string_view text, std::vector<RequirementsError>& errors)
{
    try {
        return ReadRequirements(text, &errors);
    } catch (const RequirementsError& error) {
        errors.push_back(error);
        return {};
    }
}

std::optional<Requirements> Requirements::ReadStored(std::string_view text)
{
    try {
        return Read(text);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::vector<int> Requirements::Groups() const
{
    std::vector<int> groups{SessionGroup, ReferrerGroup, UserGroup};
    for (const Requirement& line : lines) {
        for (const int group : line.Groups()) {
            AddOnce(groups, group);
            const CatalogueValue* value = FindCatalogueValue(group);
            if (value && value->existence != 0)
                AddOnce(groups, value->existence);
        }
    }
    return groups;
}

}  // namespace kel
