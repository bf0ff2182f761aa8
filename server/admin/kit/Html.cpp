#include "server/admin/kit/Html.h"

#include <algorithm>

#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel::server {

namespace {

constexpr std::string_view Voids[] = {"br", "input", "link", "meta"};

bool IsControl(char32_t c)
{
    return (c < 0x20 && c != '\t' && c != '\n' && c != '\r') || (c >= 0x7F && c < 0xA0);
}

}  // namespace

std::string Clean(std::string_view text)
{
    return ReplaceCharacters(text, [](char32_t c) { return !IsControl(c); });
}

Html::Html(std::string_view text) : markup(Escape(Clean(text))) {}

Html& Html::operator+=(const Html& more)
{
    markup += more.markup;
    return *this;
}

Html Html::Element(std::string_view name, const Attributes& attributes, const Html& content)
{
    Html element;
    element.markup.append("<").append(name);
    for (const auto& [attribute, value] : attributes)
        element.markup.append(" ").append(attribute).append("=\"").append(Escape(Clean(value))).append("\"");
    element.markup += '>';
    if (std::find(std::begin(Voids), std::end(Voids), name) != std::end(Voids))
        return element;
    if (name == "textarea" || name == "pre")
        element.markup += '\n';  // which is left out; without it the text's own first line end would be
    element.markup.append(content.markup).append("</").append(name).append(">");
    return element;
}

Html Html::Element(std::string_view name, const Attributes& attributes, std::initializer_list<Html> content)
{
    Html all;
    for (const Html& piece : content)
        all += piece;
    return Element(name, attributes, all);
}

Html Html::Stored(std::string_view text)
{
    return Element("bdi", {}, Html(text));
}

}  // namespace kel::server
