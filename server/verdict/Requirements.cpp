#include "server/verdict/Requirements.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <span>
#include <stdexcept>

#include "server/base/Text.h"
#include "server/report/Report.h"
#include "server/report/Xml.h"

namespace kel::server {

namespace {

using nlohmann::json;

constexpr int LargestId = 0x7FFFFFFF;
constexpr std::size_t LongestEcho = 60;  // bytes of the file that a reason repeats

std::string Quoted(std::string_view text)
{
    return "'" + (IsXmlText(text) ? Shortened(text, LongestEcho) : "…") + "'";
}

/// Refuses what is no object, and names other than these: a misspelt one would change what the line means.
void CheckNames(const json& entry, std::span<const std::string_view> names)
{
    if (!entry.is_object())
        throw std::runtime_error("it is no object");
    for (const auto& item : entry.items()) {
        if (std::find(names.begin(), names.end(), item.key()) == names.end())
            throw std::runtime_error(Quoted(item.key()) + " does not belong there");
    }
}

const json& Required(const json& entry, const std::string& name)
{
    const auto found = entry.find(name);
    if (found == entry.end())
        throw std::runtime_error("it has no '" + name + "'");
    return *found;
}

std::string TextOf(const json& entry, const std::string& name)
{
    const json& value = Required(entry, name);
    if (!value.is_string())
        throw std::runtime_error("its '" + name + "' is no text");
    const auto& text = value.get_ref<const std::string&>();
    if (text.size() > Requirements::LongestText)
        throw std::runtime_error("its '" + name + "' is longer than " +
                                 std::to_string(Requirements::LongestText) + " bytes");
    if (!IsXmlText(text))
        throw std::runtime_error("its '" + name + "' has a character that XML does not allow");
    return text;
}

/// A list that has so many entries.
const json& ListOf(const json& entry, const std::string& name, std::size_t least, std::size_t most)
{
    const json& list = Required(entry, name);
    if (!list.is_array())
        throw std::runtime_error("its '" + name + "' is no list");
    if (list.size() < least || list.size() > most)
        throw std::runtime_error("its '" + name + "' has " + std::to_string(list.size()) + " entries, not " +
                                 std::to_string(least) + " to " + std::to_string(most));
    return list;
}

/// Reads each entry of a list; the reason of one that is wrong begins with the kind and the number.
template <typename Read>
auto ReadEach(const json& list, const std::string& kind, Read read)
{
    std::vector<decltype(read(list))> entries;
    for (const json& entry : list) {
        try {
            entries.push_back(read(entry));
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(kind + " " + std::to_string(entries.size() + 1) + ": " + error.what());
        }
    }
    return entries;
}

Condition ConditionOf(const json& entry)
{
    Condition condition;
    const json& id = Required(entry, "id");
    if (!id.is_number_integer() || id < 1 || id > LargestId)
        throw std::runtime_error("its 'id' is no whole number from 1 to " + std::to_string(LargestId));
    condition.group = id.get<int>();
    const std::string name = TextOf(entry, "comparison");
    const auto comparison = ComparisonOf(name);
    if (!comparison)
        throw std::runtime_error(Quoted(name) + " is no comparison");
    condition.comparison = *comparison;
    if (const auto needed = entry.find("needed"); needed != entry.end())
        condition.needed = needed->is_number() ? needed->dump() : TextOf(entry, "needed");
    const std::string why = WhyNeverMet(condition.comparison, condition.needed);
    if (!why.empty())
        throw std::runtime_error("'" + name + "' " + why + ", not " + Quoted(condition.needed));
    return condition;
}

Condition AlternativeOf(const json& entry)
{
    static constexpr std::string_view Names[] = {"id", "comparison", "needed"};
    CheckNames(entry, Names);
    return ConditionOf(entry);
}

Requirement LineOf(const json& entry)
{
    static constexpr std::string_view Names[] = {"label",      "advice", "recommended", "id",
                                                 "comparison", "needed", "any of"};
    static constexpr std::string_view NamesOfEither[] = {"label", "advice", "recommended", "any of"};
    const bool isEither = entry.is_object() && entry.contains("any of");
    CheckNames(entry, isEither ? std::span<const std::string_view>(NamesOfEither) : Names);
    Requirement line;
    line.label = TextOf(entry, "label");
    if (isEither)
        line.anyOf = ReadEach(ListOf(entry, "any of", 1, Requirements::MostAlternatives), "alternative",
                              AlternativeOf);
    else
        line.anyOf.push_back(ConditionOf(entry));
    if (entry.contains("advice"))
        line.advice = TextOf(entry, "advice");
    if (const auto recommended = entry.find("recommended"); recommended != entry.end()) {
        if (!recommended->is_boolean())
            throw std::runtime_error("its 'recommended' is neither true nor false");
        line.recommended = recommended->get<bool>();
    }
    return line;
}

json Parse(std::string_view text)
{
    if (text.size() > Requirements::LongestFile)
        throw std::runtime_error("it is longer than " + std::to_string(Requirements::LongestFile) + " bytes");
    if (!IsXmlText(text))
        throw std::runtime_error("it is no UTF-8, or has a control character");
    try {
        return json::parse(text);
    } catch (const json::exception& error) {
        // "[…] parse error at line 1, …; last read: '…'", which may end in the middle of a character.
        const std::string reason = error.what();
        const std::size_t start = reason.find("] ") + 2;
        throw std::runtime_error(reason.substr(start, reason.find("; last read") - start));
    }
}

}  // namespace

std::string Condition::Text() const
{
    std::string text(NameOf(comparison));
    text.append(" ").append(needed);
    return std::string(Trim(text));
}

std::string Requirement::Needed() const
{
    std::string text;
    for (const Condition& condition : anyOf)
        text += (text.empty() ? "" : ", or ") + condition.Text();
    return text;
}

Requirements Requirements::Read(std::string_view text)
{
    static constexpr std::string_view Names[] = {"title", "requirements"};
    const json content = Parse(text);
    CheckNames(content, Names);
    return {TextOf(content, "title"),
            ReadEach(ListOf(content, "requirements", 0, MostLines), "requirement", LineOf)};
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
    std::vector<int> groups{Report::Session, Report::Referrer, Report::User};
    for (const Requirement& line : lines) {
        for (const Condition& condition : line.anyOf) {
            if (std::find(groups.begin(), groups.end(), condition.group) == groups.end())
                groups.push_back(condition.group);
        }
    }
    return groups;
}

}  // namespace kel::server
