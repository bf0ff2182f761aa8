#include "server/report/Report.h"

#include <charconv>
#include <limits>

#include "server/base/Fault.h"
#include "server/report/Xml.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxSession = 1024;  // bytes; it is the key of an index

long ReadIndex(std::string_view text)
{
    long index = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), index);
    if (error != std::errc() || end != text.end())
        throw Fault(400, "an index is not a number");
    return index;
}

}  // namespace

Report Report::ReadValues(std::string_view xml)
{
    const pugi::xml_document document = ReadXml(xml);
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "groups")
        throw Fault(400, "the body is not a report");
    Report report;
    for (const pugi::xml_node& group : root.children("group")) {
        const long index = ReadIndex(group.attribute("index").as_string("0"));
        report.values[{group.attribute("id").value(), index}] = group.child_value("value");
    }
    return report;
}

Report Report::Read(std::string_view xml)
{
    Report report = ReadValues(xml);
    const std::string& session = report.Text(Session);
    if (session.empty() || session.size() > MaxSession)
        throw NoSession();
    return report;
}

const std::string* Report::Value(int group) const
{
    const auto found = values.find({std::to_string(group), 0});
    return found == values.end() ? nullptr : &found->second;
}

ValueLookup Report::Lookup() const&
{
    return [this](int group, int index) -> std::optional<std::string> {
        const auto found = values.find({std::to_string(group), index});
        return found == values.end() ? std::nullopt : std::optional(found->second);
    };
}

const std::string& Report::Text(int group) const
{
    static const std::string nothing;
    const std::string* value = Value(group);
    return value ? *value : nothing;
}

bool Report::Has(int group) const
{
    const std::string id = std::to_string(group);
    for (auto value = values.lower_bound({id, std::numeric_limits<long>::min()});
         value != values.end() && value->first.first == id; ++value) {
        if (!Trim(value->second).empty())
            return true;
    }
    return false;
}

std::size_t Report::Bytes() const
{
    constexpr std::size_t Node = sizeof(Values::value_type) + 4 * sizeof(void*);  // of the map
    std::size_t bytes = sizeof *this;
    for (const auto& [key, value] : values)
        bytes += Node + key.first.capacity() + value.capacity();
    return bytes;
}

}  // namespace kel::server
