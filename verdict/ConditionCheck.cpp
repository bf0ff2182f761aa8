#include "verdict/ConditionCheck.h"

#include <algorithm>
#include <compare>

#include "verdict/NominalSize.h"
#include "verdict/Readings.h"
#include "verdict/ValueKinds.h"
#include "verdict/text/Text.h"

namespace kel {

namespace {

using Choices = std::vector<std::string>;

constexpr std::size_t MaxQuoted = 60;  // bytes of a text that a reason repeats

std::string Quote(std::string_view text)
{
    return "'" + Shortened(text, MaxQuoted) + "'";
}

std::string NameOf(const CatalogueValue& value)
{
    return std::to_string(value.id) + " (" + value.Name() + ")";
}

std::string Join(const std::vector<std::string_view>& texts)
{
    std::string joined;
    for (const std::string_view text : texts)
        joined += (joined.empty() ? "" : ", ") + Quote(text);
    return joined;
}

AmountKind ToAmountKind(ValueType type)
{
    return type == ValueType::Size        ? AmountKind::Bytes
           : type == ValueType::Speed     ? AmountKind::Hertz
           : type == ValueType::Bandwidth ? AmountKind::BitsPerSecond
                                          : AmountKind::Number;
}

bool IsAmount(ValueType type)
{
    return type == ValueType::Size || type == ValueType::Speed || type == ValueType::Bandwidth;
}

/// Whether the control could have written the text as a value of this type.
bool CanBeWritten(const std::string& text, const ValueKind& kind)
{
    if (kind.type == ValueType::YesNo && kind.choices[0] == 0)
        return Lower(text) == "yes" || Lower(text) == "no";
    if (kind.choices[0] != 0) {
        const Choices choices = DivideChoices(kind.choices);
        return std::any_of(choices.begin(), choices.end(),
                           [&](const std::string& choice) { return Lower(choice) == Lower(text); });
    }
    if (kind.type == ValueType::Number)
        return text.find_first_not_of("0123456789") == text.npos && (text == "0" || text.front() != '0');
    if (IsAmount(kind.type)) {  // "7.8 GB": one decimal and a unit
        const auto amount = ParseAmount(text);
        const std::size_t point = text.find('.');
        return amount && amount->kind == ToAmountKind(kind.type) && point != text.npos &&
               text.find(' ') == point + 2;
    }
    return kind.type != ValueType::Resolution || ParseEdges(text);
}

/// "it is x64 or …", or what it is and an example.
std::string Explain(const ValueKind& kind)
{
    if (kind.choices[0] != 0)
        return std::string("it is one of ") + kind.choices;
    return "it is of the type " + Quote(ToString(kind.type)) +
           (kind.example[0] != 0 ? ", such as " + Quote(kind.example) : "");
}

bool Is(const Condition& condition, std::string_view comparison)
{
    return condition.comparison->name == comparison;
}

bool IsAboutChoices(const Condition& condition)
{
    return Is(condition, "equals") || Is(condition, "one of") || Is(condition, "none of");
}

/// The texts that a condition compares with as a whole.
Choices ReadChoices(const Condition& condition)
{
    return Is(condition, "equals") ? Choices{std::string(Trim(condition.needed))}
                                   : DivideChoices(condition.needed);
}

/// How many of the values in a closed set meet a condition on texts; -1 when the set is open.
struct Coverage {
    std::ptrdiff_t met = -1, all = -1;
};

Coverage Cover(const Condition& condition, const ValueKind& kind)
{
    Choices values = DivideChoices(kind.choices);
    if (values.empty() && kind.type == ValueType::YesNo)
        values = {"Yes", "No"};
    if (values.empty() || kind.type == ValueType::Version || kind.type == ValueType::Number)
        return {};
    const auto met = std::count_if(values.begin(), values.end(), [&](const std::string& value) {
        return Compare(*condition.comparison, NormalizeValue(value), condition.needed) == Result::Pass;
    });
    return {met, static_cast<std::ptrdiff_t>(values.size())};
}

std::string Never(const Condition& condition, const CatalogueValue& value)
{
    return Quote(condition.Text()) + " can never hold for " + NameOf(value) + ": " + Explain(KindOf(value));
}

std::string Always(const Condition& condition, const CatalogueValue& value)
{
    return Quote(condition.Text()) + " always holds for " + NameOf(value) + ": " + Explain(KindOf(value));
}

std::string FindChoiceError(const Condition& condition, const CatalogueValue& value)
{
    const ValueKind& kind = KindOf(value);
    const Choices choices = ReadChoices(condition);
    const auto possible = std::count_if(choices.begin(), choices.end(), [&](const std::string& choice) {
        return CanBeWritten(choice, kind);
    });
    if (possible == 0)
        return Is(condition, "none of") ? Always(condition, value) : Never(condition, value);
    return {};
}

std::string FindAmountError(const Condition& condition, const CatalogueValue& value)
{
    const ValueKind& kind = KindOf(value);
    if (kind.type == ValueType::Resolution)
        return ParseEdges(Lower(Trim(condition.needed))) ? "" : Never(condition, value);
    const auto amount = ParseAmount(Lower(condition.needed));
    if (!amount || (amount->kind != AmountKind::Number && amount->kind != ToAmountKind(kind.type)))
        return Never(condition, value);
    return amount->number <= 0 && Is(condition, "at least") ? Always(condition, value) : "";
}

/// The lower and the upper bound of two conditions, if they are that.
std::optional<std::strong_ordering> CompareBounds(const Condition& lower, const Condition& upper)
{
    const auto order = [](const auto& one, const auto& other) -> std::optional<std::strong_ordering> {
        return one < other   ? std::strong_ordering::less
               : other < one ? std::strong_ordering::greater
                             : std::strong_ordering::equal;
    };
    const CatalogueValue* value = FindCatalogueValue(lower.group);
    if (Is(lower, "at least") && Is(upper, "at most") && value && value->soldAs == SoldAs::Nothing) {
        const auto least = ParseAmount(Lower(lower.needed)), most = ParseAmount(Lower(upper.needed));
        if (least && most && least->kind == most->kind)
            return order(least->number, most->number);
    }
    if (Is(lower, "at least version") && Is(upper, "at most version")) {
        const auto least = ParseVersion(Lower(Trim(lower.needed))),
                   most = ParseVersion(Lower(Trim(upper.needed)));
        if (least && most)
            return order(*least, *most);
    }
    return std::nullopt;
}

bool AreOpposites(const Condition& one, const Condition& other)
{
    return (Is(one, "yes") && Is(other, "no")) || (Is(one, "no") && Is(other, "yes"));
}

}  // namespace

ConditionFault FindError(const Condition& condition)
{
    const CatalogueValue* value = FindCatalogueValue(condition.group);
    if (!value)
        return {"unknown id " + std::to_string(condition.group) + ": no machine has such a value", "id"};
    const ValueKind& kind = KindOf(*value);
    if (value->Source() == NoSource && kind.choices[0] == 0)
        return {NameOf(*value) + " is always empty", "id"};
    if (!Fits(*condition.comparison, kind.type))
        return {Quote(condition.comparison->name) + " does not fit " + NameOf(*value) +
                    ", which is of the type " + Quote(ToString(kind.type)) + ": use one of " +
                    Join(FittingComparisons(kind.type)),
                "comparison"};
    if (IsAboutChoices(condition)) {
        if (std::string reason = FindChoiceError(condition, *value); !reason.empty())
            return {reason};
    } else if (Is(condition, "at least") || Is(condition, "at most")) {
        return {FindAmountError(condition, *value)};
    } else if (Is(condition, "at least version")) {
        const auto version = ParseVersion(Lower(Trim(condition.needed)));
        return {version && version->parts.empty() && version->letter == 0 ? Always(condition, *value) : ""};
    }
    const Coverage coverage = Is(condition, "any") ? Coverage() : Cover(condition, kind);
    if (coverage.met == 0)
        return {Never(condition, *value), IsAboutChoices(condition) ? "needed" : "comparison"};
    // A later control may have further values than those of a list, but never a third beside yes and no.
    if (coverage.met == coverage.all && coverage.all > 0 &&
        (kind.type == ValueType::YesNo || Is(condition, "none of")))
        return {Always(condition, *value), IsAboutChoices(condition) ? "needed" : "comparison"};
    return {};
}

ConditionFault FindDoubt(const Condition& condition)
{
    const CatalogueValue& value = *FindCatalogueValue(condition.group);
    const ValueKind& kind = KindOf(value);
    if (!value.IsReported())
        return {NameOf(value) + " is never in a report, so that the line stays unknown", "id"};
    const bool takesNothing = Is(condition, "yes") || Is(condition, "no") || Is(condition, "any");
    if (takesNothing && !condition.needed.empty())
        return {"'needed' has no effect beside " + Quote(condition.comparison->name)};
    const auto amount = ParseAmount(Lower(condition.needed));
    const bool isBound = Is(condition, "at least") || Is(condition, "at most");
    if (isBound && IsAmount(kind.type) && amount && amount->kind == AmountKind::Number)
        return {Quote(condition.needed) + " has no unit, so that it counts single " +
                (kind.type == ValueType::Size    ? "bytes: write 'GB' or 'MB' behind it"
                 : kind.type == ValueType::Speed ? "hertz: write 'GHz' behind it"
                                                 : "bits per second: write 'Mbps' behind it")};
    if (Is(condition, "at least") && kind.fallsShortOf != SoldAs::Nothing && amount) {
        const auto needed = ParseAmount(Lower(condition.needed), NominalSteps(kind.fallsShortOf));
        const auto nominal = FindNominalSize(*needed, kind.fallsShortOf);
        if (nominal && nominal->bytes == needed->number)
            return {"what is sold as " + nominal->text + " has a little less here, such as " + kind.example +
                    ", and fails: ask for less"};
    }
    if (IsAboutChoices(condition)) {
        for (const std::string& choice : ReadChoices(condition)) {
            if (!CanBeWritten(choice, kind))
                return {Quote(choice) + " is never the value of " + NameOf(value) + ": " + Explain(kind)};
        }
    }
    const Coverage coverage = Is(condition, "any") ? Coverage() : Cover(condition, kind);
    if (coverage.met == coverage.all && coverage.all > 1)
        return {Quote(condition.Text()) + " holds for all known values of " + NameOf(value)};
    return {};
}

bool AreExclusive(const Condition& one, const Condition& other)
{
    if (one.group != other.group)
        return false;
    if (Is(one, "equals") && Is(other, "equals"))
        return Lower(Trim(one.needed)) != Lower(Trim(other.needed));
    return AreOpposites(one, other) || CompareBounds(one, other) == std::strong_ordering::greater ||
           CompareBounds(other, one) == std::strong_ordering::greater;
}

bool CoverAll(const Condition& one, const Condition& other)
{
    if (one.group != other.group)
        return false;
    const auto covers = [](const auto& order) { return order && std::is_lteq(*order); };
    return AreOpposites(one, other) || covers(CompareBounds(one, other)) || covers(CompareBounds(other, one));
}

}  // namespace kel
