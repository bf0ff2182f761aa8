#include "server/report/Xml.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "server/base/Fault.h"
#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel::server {

namespace {

constexpr int BadRequest = 400;

/// Whether a reference, the text between & and ;, is one of the five names or a character's number.
bool IsReference(std::string_view name)
{
    for (const std::string_view known : {"lt", "gt", "amp", "quot", "apos"}) {
        if (name == known)
            return true;
    }
    if (!name.starts_with('#'))
        return false;
    const bool hexadecimal = name.starts_with("#x");
    name.remove_prefix(hexadecimal ? 2 : 1);
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(name.begin(), name.end(), number, hexadecimal ? 16 : 10);
    return !name.empty() && error == std::errc() && end == name.end() && IsXmlCharacter(number);
}

/// Refuses what the parser accepts although XML does not allow it.
void CheckCharacters(std::string_view text)
{
    if (text.find("<!") != std::string_view::npos)
        throw Fault(BadRequest, "declarations are not accepted");
    for (std::string_view rest = text; !rest.empty();) {
        // Nearly all of a report is plain ASCII, which needs no closer look.
        const auto* odd =
            std::find_if(rest.begin(), rest.end(), [](char c) { return c < ' ' || c > '~' || c == '&'; });
        rest.remove_prefix(static_cast<std::size_t>(odd - rest.begin()));
        if (rest.empty())
            break;
        const std::string_view here = rest;
        const auto character = TakeCodePoint(rest);
        if (!character)
            throw Fault(BadRequest, "the body is not UTF-8");
        if (!IsXmlCharacter(*character))
            throw Fault(BadRequest, "the body has a character that XML does not allow");
        if (*character == '&' &&
            !IsReference(here.substr(1, here.find(';') == here.npos ? 0 : here.find(';') - 1)))
            throw Fault(BadRequest, "the body has a reference that stands for nothing");
    }
}

}  // namespace

std::size_t CountElements(std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find('<'); at != text.npos; at = text.find('<', at + 1))
        count += text.substr(at + 1, 1) == "/" ? 0 : 1;
    return count;
}

pugi::xml_document ReadXml(std::string_view text)
{
    CheckCharacters(text);
    return ParseXml(text);
}

pugi::xml_document ParseXml(std::string_view text)
{
    pugi::xml_document document;
    // As a fragment, so that the parser keeps anything beside the root element, which can then be refused.
    const unsigned options = pugi::parse_default | pugi::parse_ws_pcdata | pugi::parse_fragment;
    const auto result = document.load_buffer(text.data(), text.size(), options, pugi::encoding_utf8);
    if (!result)
        throw Fault(BadRequest, std::string("the body is not well-formed XML: ") + result.description());
    int roots = 0;
    for (const pugi::xml_node& node : document) {
        if (node.type() == pugi::node_pcdata && !Trim(node.value()).empty())
            throw Fault(BadRequest, "the body has text beside its root element");
        roots += node.type() == pugi::node_element ? 1 : 0;
    }
    if (roots != 1)
        throw Fault(BadRequest, "the body has no root element, or several");
    return document;
}

}  // namespace kel::server
