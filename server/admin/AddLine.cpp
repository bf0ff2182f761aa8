#include "server/admin/AddLine.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "server/admin/Layout.h"
#include "server/admin/ValueSearch.h"
#include "verdict/JsonPlaces.h"
#include "verdict/ValueKinds.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxMatches = 12;

/// The value that the form's last button or an earlier one has chosen; null when there is none.
const CatalogueValue* ChosenValue(const Form& form)
{
    const std::string& action = form.Text("do");
    const std::string id =
        action.starts_with(ChooseAction) ? action.substr(ChooseAction.size()) : form.Text("chosen");
    return FindCatalogueValue(static_cast<int>(WholeNumber(id)));
}

Html Matches(const std::string& words)
{
    const auto found = FindValues(words);
    if (found.empty())
        return Html::Element("p", {{"class", "empty"}}, "No value has all of these words.");
    Html list;
    for (std::size_t i = 0; i < found.size() && i < MaxMatches; ++i) {
        const CatalogueValue& value = *found[i];
        const std::string id = std::to_string(value.id);
        list += Html::Element("li", {},
                              {Button("Choose " + id, "plain", std::string(ChooseAction) + id),
                               Html::Element("div", {}, std::string(value.Detector()) + ": " + value.Name()),
                               Html::Element("div", {{"class", "kind"}}, DescribeKind(value))});
    }
    Html all = Html::Element("ul", {{"class", "matches"}}, list);
    if (found.size() > MaxMatches)
        all += Html::Element(
            "p", {},
            fmt::format("{} further values have these words: add a word.", found.size() - MaxMatches));
    return all;
}

Html CheckBox(const std::string& name, const std::string& label, bool isChecked)
{
    Html::Attributes attributes{{"id", name}, {"name", name}, {"type", "checkbox"}, {"value", "yes"}};
    if (isChecked)
        attributes.emplace_back("checked", "");
    return Html::Element(
        "div", {{"class", "field"}},
        {Html::Element("input", attributes), Html::Element("label", {{"for", name}}, label)});
}

Html ComparisonField(const CatalogueValue& value, const std::string& chosen)
{
    Html options;
    for (const std::string_view name : FittingComparisons(KindOf(value).type)) {
        Html::Attributes attributes{{"value", std::string(name)}};
        if (name == chosen)
            attributes.emplace_back("selected", "");
        options += Html::Element("option", attributes, name);
    }
    return Html::Element("div", {{"class", "field"}},
                         {Html::Element("label", {{"for", "comparison"}}, "Comparison"),
                          Html::Element("select", {{"id", "comparison"}, {"name", "comparison"}}, options)});
}

Html LineFields(const CatalogueValue& value, const Form& form)
{
    const ValueKind& kind = KindOf(value);
    // Enter in a field presses the form's first button, which is not the line's own: only a new choice may
    // empty the fields.
    const bool isChosenNow = form.Text("do").starts_with(ChooseAction);
    const auto kept = [&](const char* name) { return isChosenNow ? std::string() : form.Text(name); };
    Html fields =
        Hidden("chosen", std::to_string(value.id)) +
        Html::Element("p", {},
                      {Html::Element("b", {}, std::to_string(value.id)), " ",
                       std::string(value.Detector()) + ": " + value.Name(), ", ", DescribeKind(value)});
    if (value.Caution()[0] != 0)
        fields += Html::Element("p", {{"class", "kind"}}, value.Caution());
    fields += Field("Label, which visitors read", "label", isChosenNow ? value.Name() : kept("label")) +
              ComparisonField(value, kept("comparison"));
    if (kind.type != ValueType::YesNo)
        fields += Field("Needed", "needed", kept("needed"), "text", {{"placeholder", kind.example}});
    fields += Field("Advice for visitors who do not meet it", "advice", kept("advice"));
    if (value.hasIndexes)
        fields += CheckBox("any", "Any device or installed version may meet it", kept("any") == "yes");
    return fields + CheckBox("recommended", "A recommendation only", kept("recommended") == "yes") +
           Html::Element("div", {{"class", "buttons"}}, Button("Add the line", "plain", "add"));
}

}  // namespace

Html AddLineFields(const Form& form)
{
    const std::string words = form.Text("find");
    Html fields = Html::Element("h2", {}, "Add a line") +
                  Field("Words of a value's name, area, type, unit or example", "find", words, "search") +
                  Html::Element("div", {{"class", "buttons"}}, Button("Find values", "plain", "find"));
    const std::string& action = form.Text("do");
    const CatalogueValue* value = ChosenValue(form);
    if (value && action != "find")
        return fields + LineFields(*value, form);
    return Trim(words).empty() ? fields : fields + Matches(words);
}

std::string AddLine(const std::string& text, const Form& form)
{
    const CatalogueValue* value = ChosenValue(form);
    if (!value)
        throw std::runtime_error("Choose a value for the new line first.");
    const std::string label(Trim(form.Text("label"))), advice(Trim(form.Text("advice"))),
        needed(Trim(form.Text("needed")));
    const std::string& comparison = form.Text("comparison");
    nlohmann::ordered_json line{{"id", value->id}, {"label", label}, {"comparison", comparison}};
    if (!needed.empty() && comparison != "any")
        line["needed"] = needed;
    if (form.Text("any") == "yes")
        line["of"] = "any";
    if (!advice.empty())
        line["advice"] = advice;
    if (form.Text("recommended") == "yes")
        line["recommended"] = true;
    const auto end = nlohmann::json::accept(text) ? FindListEnd(text, "requirements") : std::nullopt;
    if (!end)
        throw std::runtime_error(
            "The line was not added: the text is not valid JSON with a list \"requirements\" yet.");
    return text.substr(0, end->place) + (end->isEmpty ? "\n    " : ",\n    ") + line.dump() +
           (end->isEmpty ? "\n  " : "") + text.substr(end->place);
}

}  // namespace kel::server
