#include "verdict/Requirements.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <span>
#include <stdexcept>

#include "verdict/Catalogue.h"
#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel {

namespace {

using nlohmann::json;

constexpr int MaxId = 0x7FFFFFFF;
constexpr std::size_t MaxEcho = 60;  // bytes of the file that a reason repeats

std::string Quoted(std::string_view text)
{
    return "'" + (IsXmlText(text) ? Shortened(text, MaxEcho) : "…") + "'";
}

/// Throws unless the entry is an object of these names: a misspelt one would change what the line means.
void CheckNames(const json& entry, std::span<const std::string_view> names)
{
    if (!entry.is_object())
        throw RequirementsError("it is not an object");
    for (const auto& item : entry.items()) {
        if (std::find(names.begin(), names.end(), item.key()) == names.end())
            throw RequirementsError("unknown name " + Quoted(item.key()), {item.key()});
    }
}

const json& Required(const json& entry, const std::string& name)
{
    const auto found = entry.find(name);
    if (found == entry.end())
        throw RequirementsError("it has no '" + name + "'");
    return *found;
}

std::string CheckText(const json& value, const std::string& name)
{
    if (!value.is_string())
        throw RequirementsError("its '" + name + "' is not a text", {name});
    const auto& text = value.get_ref<const std::string&>();
    if (text.size() > Requirements::MaxText)
        throw RequirementsError(
            "its '" + name + "' is longer than " + std::to_string(Requirements::MaxText) + " bytes", {name});
    if (!IsXmlText(text))
        throw RequirementsError("its '" + name + "' has a character that XML does not allow", {name});
    return text;
}

std::string ReadText(const json& entry, const std::string& name)
{
    return CheckText(Required(entry, name), name);
}

bool HasOnly(std::string_view text, std::string_view characters)
{
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

/// Whether the text is a language's tag in lower case, such as "de", "pt-br" or "zh-hant".
bool IsLanguage(std::string_view text)
{
    constexpr std::string_view Letters = "abcdefghijklmnopqrstuvwxyz";
    constexpr std::size_t MaxTag = 35;
    const std::string_view language = text.substr(0, text.find('-'));
    return text.size() <= MaxTag && HasOnly(language, Letters) && language.size() >= 2 &&
           language.size() <= 3 && !text.ends_with('-') &&
           HasOnly(text, "abcdefghijklmnopqrstuvwxyz0123456789-") &&
           text.find("--") == std::string_view::npos;
}

/// A text, or an object with a text for each language.
LocalText ReadLocalText(const json& entry, const std::string& name)
{
    const json& value = Required(entry, name);
    if (!value.is_object())
        return LocalText(CheckText(value, name));
    if (value.empty() || value.size() > Requirements::MaxLanguages)
        throw RequirementsError("its '" + name + "' has " + std::to_string(value.size()) +
                                    " languages, not 1 to " + std::to_string(Requirements::MaxLanguages),
                                {name});
    LocalText text;
    for (const auto& item : value.items()) {
        if (!IsLanguage(Lower(item.key())))
            throw RequirementsError("its '" + name + "' has " + Quoted(item.key()) +
                                        ", which is not a language such as 'de' or 'pt-BR'",
                                    {name, item.key()});
        text.Add(Lower(item.key()), CheckText(item.value(), name));
    }
    return text;
}

/// A list of `min` to `max` entries.
const json& ReadList(const json& entry, const std::string& name, std::size_t min, std::size_t max)
{
    const json& list = Required(entry, name);
    if (!list.is_array())
        throw RequirementsError("its '" + name + "' is not a list", {name});
    if (list.size() < min || list.size() > max)
        throw RequirementsError("its '" + name + "' has " + std::to_string(list.size()) + " entries, not " +
                                    std::to_string(min) + " to " + std::to_string(max),
                                {name});
    return list;
}

/// Reads each entry of the list that is a member of that name; the reason for a wrong one begins with the
/// kind and its number. With `errors` it is added to them, and the entry is left empty.
template <typename Read>
auto ReadEach(const json& list, const std::string& name, const std::string& kind, Read read,
              std::vector<RequirementsError>* errors = nullptr)
{
    std::vector<decltype(read(list))> entries;
    for (const json& entry : list) {
        try {
            entries.push_back(read(entry));
        } catch (const RequirementsError& error) {
            JsonPath path{name, std::to_string(entries.size())};
            path.insert(path.end(), error.path.begin(), error.path.end());
            const RequirementsError whole(
                kind + " " + std::to_string(entries.size() + 1) + ": " + error.what(), std::move(path));
            if (!errors)
                throw whole;
            errors->push_back(whole);
            entries.emplace_back();
        }
    }
    return entries;
}

/// Whether the text is an origin as a browser sends it: scheme, host in lower case, and a port unless it is
/// the scheme's.
bool IsOrigin(std::string_view text)
{
    constexpr std::string_view PortDigits = "0123456789", Scheme = "://";
    const std::size_t end = text.find(Scheme);
    const std::string_view scheme = text.substr(0, end);
    if (end == std::string_view::npos || (scheme != "https" && scheme != "http"))
        return false;
    std::string_view host = text.substr(end + Scheme.size());
    const std::size_t bracket = host.find(']'), colon = host.rfind(':');
    if (colon != std::string_view::npos && (bracket == std::string_view::npos || bracket < colon)) {
        const std::string_view port = host.substr(colon + 1);
        if (!HasOnly(port, PortDigits) || port.size() > 5 || port.front() == '0' ||
            port == (scheme == "https" ? "443" : "80"))
            return false;
        host = host.substr(0, colon);
    }
    if (host.starts_with('['))
        return host.ends_with(']') && HasOnly(host.substr(1, host.size() - 2), "0123456789abcdef:.");
    return HasOnly(host, "abcdefghijklmnopqrstuvwxyz0123456789-.") && !host.starts_with('.') &&
           !host.starts_with('-');
}

std::string ReadPage(const json& entry)
{
    const std::string* text = entry.get_ptr<const std::string*>();
    if (!text || !IsOrigin(*text))
        throw RequirementsError((text ? Quoted(*text) : std::string("it")) +
                                " is not an origin, such as 'https://shop.example'");
    return *text;
}

Condition ReadCondition(const json& entry)
{
    Condition condition;
    const json& id = Required(entry, "id");
    if (!id.is_number_integer() || id < 1 || id > MaxId)
        throw RequirementsError("its 'id' is not a whole number from 1 to " + std::to_string(MaxId), {"id"});
    condition.group = id.get<int>();
    const std::string name = ReadText(entry, "comparison");
    condition.comparison = ParseComparison(name);
    if (!condition.comparison)
        throw RequirementsError("unknown comparison " + Quoted(name), {"comparison"});
    if (const auto needed = entry.find("needed"); needed != entry.end())
        condition.needed = needed->is_number() ? needed->dump() : ReadText(entry, "needed");
    const std::string_view reason = condition.comparison->unsatisfiableReason(condition.needed);
    if (!reason.empty())
        throw RequirementsError("'" + name + "' " + std::string(reason) + ", not " + Quoted(condition.needed),
                                {"needed"});
    return condition;
}

Condition ReadPlainCondition(const json& entry)
{
    static constexpr std::string_view Names[] = {"id", "comparison", "needed"};
    CheckNames(entry, Names);
    return ReadCondition(entry);
}

/// Whether the entry is for any index.
bool ReadOf(const json& entry)
{
    const auto of = entry.find("of");
    if (of != entry.end() && *of != "any")
        throw RequirementsError("its 'of' is not 'any'", {"of"});
    return of != entry.end();
}

Alternative ReadAlternative(const json& entry)
{
    static constexpr std::string_view Names[] = {"label", "id", "comparison", "needed", "of"};
    static constexpr std::string_view NamesWithConditions[] = {"label", "all of", "of"};
    const bool hasConditions = entry.is_object() && entry.contains("all of");
    CheckNames(entry, hasConditions ? std::span<const std::string_view>(NamesWithConditions) : Names);
    Alternative alternative;
    if (hasConditions)
        alternative.allOf = ReadEach(ReadList(entry, "all of", 1, Requirements::MaxConditions), "all of",
                                     "condition", ReadPlainCondition);
    else
        alternative.allOf.push_back(ReadCondition(entry));
    alternative.ofAny = ReadOf(entry);
    if (entry.contains("label"))
        alternative.label = ReadText(entry, "label");
    return alternative;
}

Requirement ReadLine(const json& entry)
{
    static constexpr std::string_view Names[] = {"label",      "needed text", "advice", "recommended", "id",
                                                 "comparison", "needed",      "of",     "any of"};
    static constexpr std::string_view NamesWithAlternatives[] = {"label",       "needed text", "advice",
                                                                 "recommended", "of",          "any of"};
    const bool hasAlternatives = entry.is_object() && entry.contains("any of");
    CheckNames(entry, hasAlternatives ? std::span<const std::string_view>(NamesWithAlternatives) : Names);
    Requirement line;
    line.label = ReadLocalText(entry, "label");
    if (entry.contains("needed text"))
        line.neededText = ReadLocalText(entry, "needed text");
    if (hasAlternatives)
        line.anyOf = ReadEach(ReadList(entry, "any of", 1, Requirements::MaxAlternatives), "any of",
                              "alternative", ReadAlternative);
    else
        line.anyOf.push_back({{ReadCondition(entry)}, false, ""});
    if (ReadOf(entry)) {
        for (Alternative& alternative : line.anyOf)
            alternative.ofAny = true;
    }
    if (entry.contains("advice"))
        line.advice = ReadLocalText(entry, "advice");
    if (const auto recommended = entry.find("recommended"); recommended != entry.end()) {
        if (!recommended->is_boolean())
            throw RequirementsError("its 'recommended' is neither true nor false", {"recommended"});
        line.recommended = recommended->get<bool>();
    }
    return line;
}

void AddOnce(std::vector<int>& groups, int group)
{
    if (std::find(groups.begin(), groups.end(), group) == groups.end())
        groups.push_back(group);
}

json Parse(std::string_view text)
{
    if (text.size() > Requirements::MaxFile)
        throw RequirementsError("it is longer than " + std::to_string(Requirements::MaxFile) + " bytes");
    if (!IsXmlText(text))
        throw RequirementsError("it is not UTF-8, or has a control character");
    try {
        return json::parse(text);
    } catch (const json::exception& error) {
        // "[…] parse error at line 1, …; last read: '…'", which may end in the middle of a character.
        std::string reason = error.what();
        reason.erase(0, reason.find("] ") + 2);
        reason.erase(std::min(reason.find("; last read"), reason.size()));
        constexpr std::string_view Begin = "parse error at line ";
        int line = 0;
        if (reason.starts_with(Begin))
            std::from_chars(reason.data() + Begin.size(), reason.data() + reason.size(), line);
        throw RequirementsError(reason, {}, line);
    }
}

Requirements ReadContent(const json& content, std::vector<RequirementsError>* errors)
{
    static constexpr std::string_view Names[] = {"title", "pages", "requirements"};
    CheckNames(content, Names);
    Requirements requirements;
    requirements.title = ReadLocalText(content, "title");
    if (content.contains("pages"))
        requirements.pages = ReadEach(ReadList(content, "pages", 0, Requirements::MaxPages), "pages", "page",
                                      ReadPage, errors);
    requirements.lines = ReadEach(ReadList(content, "requirements", 0, Requirements::MaxLines),
                                  "requirements", "requirement", ReadLine, errors);
    return requirements;
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
    return ReadContent(Parse(text), nullptr);
}

Requirements Requirements::ReadPartly(std::string_view text, std::vector<RequirementsError>& errors)
{
    try {
        return ReadContent(Parse(text), &errors);
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
