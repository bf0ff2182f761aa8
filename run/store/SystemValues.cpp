#include "run/store/SystemValues.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <stdexcept>

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "run/store/GroupsText.h"
#include "values/Name.h"
#include "values/Text.h"

namespace kel {

namespace {

auto HasID(const SystemValueID& id)
{
    return [&id](const SystemValue& value) { return value.ID() == id; };
}

}  // namespace

void SystemValues::AddValues(const std::wstring& text)
{
    const LogScope trace(L"kel::SystemValues::AddValues");
    WriteLog(LogTrace, L"values = ", text);
    GroupsText groups(text);
    GroupEntry entry;
    while (groups.Next(entry)) {
        if (!entry.id.empty())
            AddValue(SystemValueID(GroupID(entry.id), ToInteger(entry.index)), Name(entry.value));
    }
}

void SystemValues::AddValue(const SystemValueID& id, const boost::shared_ptr<const Value>& value)
{
    if (!value)
        throw std::invalid_argument("A null value cannot be stored.");
    const SystemValue added(id, value);
    if (Log::Instance().IsEnabled(LogTrace))
        WriteLog(LogTrace, L"Adding value: ", added.Text(), L" to ", id.Group().Text());
    if (Exists(id))
        ReplaceValue(added);
    else
        values.push_back(added);
    if (HasReason(id))
        noted.erase(FindNoted(id));
}

void SystemValues::AddValue(const SystemValueID& id, const std::wstring& text)
{
    AddValue(id, boost::make_shared<const Name>(text));
}

void SystemValues::AddValue(unsigned number, const std::wstring& text)
{
    AddValue(SystemValueID(GroupID(number)), text);
}

bool SystemValues::Exists(const SystemValueID& id) const
{
    return TryGetValue(id) != nullptr;
}

bool SystemValues::ReplaceValue(const SystemValue& value)
{
    try {
        const auto found = std::ranges::find_if(values, HasID(value.ID()));
        if (found == values.end())
            return false;
        *found = value;
        return true;
    } catch (const std::exception& error) {
        ReportFailure(LogError, L"Error: \"", error.what(), L"\" while trying to find value: ",
                      value.ID().Group().Text());
        return false;
    }
}

const SystemValue& SystemValues::GetValue(const SystemValueID& id) const
{
    const SystemValue* value = TryGetValue(id);
    if (value == nullptr)
        throw std::out_of_range("Value " + std::to_string(id.Group().Number()) + " not present.");
    return *value;
}

const SystemValue* SystemValues::TryGetValue(const SystemValueID& id) const
{
    const auto found = std::ranges::find_if(values, HasID(id));
    return found != values.end() ? &*found : nullptr;
}

void SystemValues::SetReason(const SystemValueID& id, const Reason& reason)
{
    const auto known = std::ranges::find(reasons, reason);
    const auto place = static_cast<std::size_t>(known - reasons.begin());
    if (known == reasons.end())
        reasons.push_back(reason);
    if (HasReason(id))
        noted.erase(FindNoted(id));
    noted.push_back({id.Group().Number(), id.Index(), place});
}

std::vector<SystemValues::NotedReason>::const_iterator SystemValues::FindNoted(const SystemValueID& id) const
{
    return std::ranges::find_if(noted, [&id](const NotedReason& reason) {
        return reason.group == id.Group().Number() && reason.index == id.Index();
    });
}

std::optional<Reason> SystemValues::FindReason(const SystemValueID& id) const
{
    const SystemValue* const value = TryGetValue(id);
    if (value != nullptr && !value->Text().empty())
        return {};
    const auto found = FindNoted(id);
    return found != noted.end() ? reasons.at(found->place) : Reason();
}

}  // namespace kel
