#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// Languages that a visitor reads, as tags in lower case ("de-ch"), the preferred one first.
using Languages = std::vector<std::string>;

/// The languages of a header Accept-Language, such as "de-CH, de;q=0.9, en;q=0.8"; at most 20. Those with the
/// quality 0 and what is not a tag are left out.
Languages ParseLanguages(std::string_view header);

/// A text for visitors, in one language or in several.
class LocalText {
public:
    LocalText() = default;
    explicit LocalText(std::string text);  ///< The same in every language.

    /// Adds the text of a language, whose tag is in lower case.
    void Add(std::string language, std::string text);
    /// The text in the first of the languages that it has, or else the one in English, or else the first one.
    const std::string& In(const Languages& languages) const;
    const std::string& Default() const { return In({}); }

private:
    struct Version {
        std::string language, text;
    };

    const Version* Find(std::string_view language) const;

    std::vector<Version> versions;
};

}  // namespace kel
