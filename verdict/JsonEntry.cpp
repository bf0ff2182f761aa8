#include "verdict/JsonEntry.h"

#include <algorithm>

#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel {

namespace {

using nlohmann::json;

constexpr std::size_t MaxEcho = 60;  // bytes of the file that a reason repeats

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

}  // namespace

std::string Quoted(std::string_view text)
{
    return "'" + (IsXmlText(text) ? Shortened(text, MaxEcho) : "…") + "'";
}

bool HasOnly(std::string_view text, std::string_view characters)
{
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

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

std::string ReadText(const json& entry, const std::string& name)
{
    return CheckText(Required(entry, name), name);
}

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

}  // namespace kel
