#include "server/report/Report.h"

#include <algorithm>
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

Report Report::From(const pugi::xml_document& document)
{
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "groups")
        throw Fault(400, "the body is not a report");
    std::vector<GroupText> groups;
    for (const pugi::xml_node& group : root.children("group"))
        groups.push_back({group.attribute("id").value(), ReadIndex(group.attribute("index").as_string("0")),
                          group.child_value("value"), false});
    return From(std::move(groups));
}

Report Report::From(std::vector<GroupText> groups)
{
    const auto isBefore = [](const GroupText& left, const GroupText& right) {
        return std::pair(left.id, left.index) < std::pair(right.id, right.index);
    };
    std::stable_sort(groups.begin(), groups.end(), isBefore);
    Report report;
    report.values.reserve(groups.size());
    for (auto group = groups.begin(); group != groups.end(); ++group) {
        if (group + 1 == groups.end() || isBefore(*group, group[1]))  // of equal ones the last
            report.values.emplace_back(std::pair(group->id, group->index), group->Value());
    }
    return report;
}

Report Report::ReadValues(std::string_view xml)
{
    return From(ReadXml(xml));
}

std::optional<Report> Report::ReadStored(std::string_view xml, int group)
{
    try {
        auto groups = FindPlainGroups(xml);
        if (groups && group != 0)
            std::erase_if(*groups,
                          [wanted = std::to_string(group), session = std::to_string(Session)](
                              const GroupText& one) { return one.id != wanted && one.id != session; });
        Report report = groups ? From(std::move(*groups)) : From(ParseXml(xml));
        return report.Text(Session).empty() ? std::nullopt : std::optional(std::move(report));
    } catch (const Fault&) {
        return std::nullopt;
    }
}

Report Report::Read(std::string_view xml)
{
    Report report = ReadValues(xml);
    const std::string& session = report.Text(Session);
    if (session.empty() || session.size() > MaxSession)
        throw NoSession();
    return report;
}

Report::Values::const_iterator Report::Find(int group, long index) const
{
    const std::string id = std::to_string(group);
    return std::lower_bound(values.begin(), values.end(), index,
                            [&](const Values::value_type& value, long wanted) {
                                const int order = value.first.first.compare(id);
                                return order < 0 || (order == 0 && value.first.second < wanted);
                            });
}

const std::string* Report::Value(int group) const
{
    const auto devices = Devices(group, 1);
    return devices.empty() ? nullptr : devices.front();
}

std::vector<const std::string*> Report::Devices(int group, std::size_t max) const
{
    std::vector<const std::string*> texts;
    const std::string id = std::to_string(group);
    for (auto value = Find(group, 0);
         value != values.end() && texts.size() < max &&
         value->first.second == static_cast<long>(texts.size()) && value->first.first == id;
         ++value)
        texts.push_back(&value->second);
    return texts;
}

ValueLookup Report::Lookup() const&
{
    return [this](int group, int index) -> std::optional<std::string> {
        const auto found = Find(group, index);
        return found != values.end() && found->first == std::pair(std::to_string(group), long{index})
                   ? std::optional(found->second)
                   : std::nullopt;
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
    for (auto value = Find(group, std::numeric_limits<long>::min());
         value != values.end() && value->first.first == id; ++value) {
        if (!Trim(value->second).empty())
            return true;
    }
    return false;
}

std::size_t Report::Bytes() const
{
    std::size_t bytes = sizeof *this + values.capacity() * sizeof(Values::value_type);
    for (const auto& [key, value] : values)
        bytes += key.first.capacity() + value.capacity();
    return bytes;
}

}  // namespace kel::server
