#include "verdict/LocalText.h"

#include <algorithm>
#include <utility>

#include "verdict/text/Text.h"

namespace kel {

namespace {

constexpr std::size_t MaxLanguages = 20;
constexpr int MaxQuality = 1000;

/// Thousandths of a parameter such as "q=0.8"; MaxQuality when it is not one.
int ParseQuality(std::string_view parameter)
{
    parameter = Trim(parameter);
    if (!parameter.starts_with("q=0"))
        return MaxQuality;
    parameter.remove_prefix(3);
    int quality = 0;
    for (std::size_t digit = 1; digit <= 3; ++digit) {
        const char c = digit < parameter.size() ? parameter[digit] : '0';
        quality = quality * 10 + (c >= '0' && c <= '9' ? c - '0' : 0);
    }
    return quality;
}

}  // namespace

Languages ParseLanguages(std::string_view header)
{
    std::vector<std::pair<int, std::string>> found;
    while (!header.empty() && found.size() < MaxLanguages) {
        const std::string_view part = header.substr(0, header.find(','));
        header.remove_prefix(std::min(part.size() + 1, header.size()));
        const std::size_t semicolon = std::min(part.find(';'), part.size());
        const std::string_view tag = Trim(part.substr(0, semicolon));
        const int quality = ParseQuality(part.substr(std::min(semicolon + 1, part.size())));
        if (IsReferrer(tag) && quality > 0)  // letters, digits and hyphens
            found.emplace_back(quality, Lower(tag));
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& one, const auto& other) { return one.first > other.first; });
    Languages languages;
    for (auto& [quality, tag] : found)
        languages.push_back(std::move(tag));
    return languages;
}

LocalText::LocalText(std::string text)
{
    Add("", std::move(text));
}

void LocalText::Add(std::string language, std::string text)
{
    versions.push_back({std::move(language), std::move(text)});
}

const LocalText::Version* LocalText::Find(std::string_view language) const
{
    const auto found = std::find_if(versions.begin(), versions.end(),
                                    [=](const Version& version) { return version.language == language; });
    return found == versions.end() ? nullptr : &*found;
}

const std::string& LocalText::In(const Languages& languages) const
{
    static const std::string none;
    if (versions.empty())
        return none;
    for (const std::string& language : languages) {
        // "de-ch" is also met by "de".
        for (std::string_view tag = language; !tag.empty();
             tag = tag.substr(0, tag.rfind('-') == std::string_view::npos ? 0 : tag.rfind('-'))) {
            if (const Version* version = Find(tag))
                return version->text;
        }
    }
    const Version* english = Find("en");
    return english ? english->text : versions.front().text;
}

}  // namespace kel
