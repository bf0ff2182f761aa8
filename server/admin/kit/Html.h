#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kel::server {

/// A piece of a page. Every text that becomes one is escaped, so that no stored text can be markup.
class Html {
public:
    Html() = default;
    Html(std::string_view text);                                     // NOLINT: a text is a piece of a page
    Html(const std::string& text) : Html(std::string_view(text)) {}  // NOLINT
    Html(const char* text) : Html(std::string_view(text)) {}         // NOLINT

    Html& operator+=(const Html& more);
    bool IsEmpty() const { return markup.empty(); }
    const std::string& Markup() const { return markup; }

    using Attributes = std::vector<std::pair<std::string_view, std::string>>;
    /// An element; its name and those of the attributes are the program's own. An href begins with a slash.
    static Html Element(std::string_view name, const Attributes& attributes, const Html& content = {});
    static Html Element(std::string_view name, const Attributes& attributes,
                        std::initializer_list<Html> content);
    /// A stored text inside a sentence: its writing direction does not affect the rest.
    static Html Stored(std::string_view text);

private:
    std::string markup;
};

inline Html operator+(Html left, const Html& right)
{
    left += right;
    return left;
}

/// The text as printable UTF-8: control characters other than tabs and line ends, and bytes that are not
/// UTF-8, become U+FFFD.
std::string Clean(std::string_view text);

}  // namespace kel::server
