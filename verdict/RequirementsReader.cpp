#include "verdict/RequirementsReader.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <span>
#include <string>

#include "verdict/JsonEntry.h"
#include "verdict/text/Utf8.h"

namespace kel {

namespace {

using nlohmann::json;

constexpr int MaxId = 0x7FFFFFFF;

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

}  // namespace

Requirements ReadRequirements(std::string_view text, std::vector<RequirementsError>* errors)
{
    static constexpr std::string_view Names[] = {"title", "pages", "requirements"};
    const json content = Parse(text);
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

}  // namespace kel
