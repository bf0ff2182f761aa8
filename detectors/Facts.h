// The facts of a detector as one table, which merges what its sources found and stores it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "detectors/Component.h"
#include "detectors/StoredFacts.h"

namespace kel {

/// The id of a fact that is merged for other rules to use, and not stored.
inline constexpr unsigned NotStored = 0;

/// A row of a table: the id under which a member of the detector's record is stored, and what the log calls
/// it.
template <typename Record, typename Member>
struct Fact {
    unsigned id;
    Member Record::*member;
    const wchar_t* name = L"";
};

template <typename Record, typename Member>
Fact(unsigned, Member Record::*) -> Fact<Record, Member>;
template <typename Record, typename Member>
Fact(unsigned, Member Record::*, const wchar_t*) -> Fact<Record, Member>;

/// Whether a source knows a member: texts, values and options that are not empty, flags that are set.
inline bool IsKnown(bool flag)
{
    return flag;
}
template <typename T>
bool IsKnown(const T& member)
{
    if constexpr (requires { member.has_value(); })
        return member.has_value();
    else if constexpr (requires { member.HasValue(); })
        return member.HasValue();
    else
        return !member.empty();
}

/// A record that is merged from several sources, and the source of each fact.
template <typename Record, std::size_t Count>
struct Merged {
    Record record;
    std::array<const wchar_t*, Count> sources{};  // null where no source has the fact
};

/// Logs from which source a fact of a device is.
inline void LogSource(const wchar_t* detector, int index, const wchar_t* fact, const wchar_t* source)
{
    WriteLog(LogTrace, detector, L'[', index, L"] ", fact, L" from ", source);
}

/// All facts of a detector, in the order in which they are stored.
template <typename Record, typename... Members>
class FactTable {
public:
    using Device = Merged<Record, sizeof...(Members)>;

    explicit constexpr FactTable(Fact<Record, Members>... facts) : rows(facts...) {}

    /// Copies from a source what the target lacks; a flag that is set in the source is set in the target.
    void Merge(Device& target, const Record& source, const wchar_t* sourceName) const
    {
        ForEach([&](const auto& fact, std::size_t row) {
            if (IsKnown(target.record.*fact.member) || !IsKnown(source.*fact.member))
                return;
            target.record.*fact.member = source.*fact.member;
            target.sources[row] = sourceName;
        });
        if constexpr (requires { source.failures; })
            AddFailures(target.record.failures, source.failures);
    }

    /// Merges the records of another source into the devices. A record is merged into the device that it
    /// describes, unless another record of this source already was; otherwise it becomes a new device.
    /// @param isSame whether two records describe the same device; false when it is not certain
    template <typename Predicate>
    void Join(std::vector<Device>& devices, const std::vector<Record>& listed, const wchar_t* sourceName,
              Predicate isSame) const
    {
        std::vector<bool> isTaken(devices.size());
        for (const Record& record : listed) {
            std::size_t place = 0;
            while (place < isTaken.size() && (isTaken[place] || !isSame(devices[place].record, record)))
                ++place;
            if (place < isTaken.size())
                isTaken[place] = true;
            else
                devices.emplace_back();
            Merge(place < isTaken.size() ? devices[place] : devices.back(), record, sourceName);
        }
    }

    /// Stores a record under an index: unknown members as an empty text, flags that are not set as "No". The
    /// failures in the reading of the record explain what is empty.
    void Store(const Record& record, int index = 0) const
    {
        ForEach([&](const auto& fact, std::size_t) {
            if (fact.id != NotStored)
                StoreMember(fact.id, index, record.*fact.member);
        });
        if constexpr (requires { record.failures; })
            NoteFailures(record.failures, index);
    }

    /// Notes for each fact that is empty the first of the failures that its sources have.
    void NoteFailures(const std::vector<SourceFailure>& failures, int index = 0) const
    {
        std::apply(
            [&](const auto&... facts) {
                for (const unsigned id : {facts.id...})
                    NoteFailure(id, index, failures);
            },
            rows);
    }

    /// The same for a merged record; the log shows the source of each fact that has a name.
    void Store(const Device& device, const wchar_t* detector, int index = 0) const
    {
        ForEach([&](const auto& fact, std::size_t row) {
            if (*fact.name != L'\0' && device.sources[row] != nullptr)
                LogSource(detector, index, fact.name, device.sources[row]);
        });
        Store(device.record, index);
    }

    /// Stores a record in which nothing is known.
    void StoreDefaults() const { Store(Record()); }

    /// Adds the facts that are stored to a list.
    void List(StoredFacts& facts) const
    {
        ForEach([&](const auto& fact, std::size_t) { Add(facts, fact); });
    }

private:
    template <typename Member>
    static void Add(StoredFacts& facts, const Fact<Record, Member>& fact)
    {
        static_assert(!TypeName<Member>.empty(), "a type without a name in the catalogue");
        if (fact.id != NotStored)
            facts.push_back({fact.id, TypeName<Member>});
    }

    template <typename Visit>
    void ForEach(Visit visit) const
    {
        std::apply(
            [&visit, row = std::size_t{0}](const auto&... facts) mutable { (visit(facts, row++), ...); },
            rows);
    }

    static void StoreMember(unsigned id, int index, bool flag)
    {
        Component::AddValue(id, Exists(flag), index);
    }
    static void StoreMember(unsigned id, int index, std::int32_t number)
    {
        Component::AddValue(id, Count(number), index);
    }
    template <typename T>
    static void StoreMember(unsigned id, int index, const std::optional<T>& member)
    {
        if (member)
            StoreMember(id, index, *member);
        else
            Component::AddValue(id, std::wstring(), index);
    }
    template <typename T>
    static void StoreMember(unsigned id, int index, const T& member)
    {
        Component::AddValue(id, member, index);
    }

    std::tuple<Fact<Record, Members>...> rows;
};

/// What a detector of several devices stores about all of them together.
struct ListTotals {
    bool isThere = false;
    std::int32_t count = 0;

    ListTotals() = default;
    explicit ListTotals(std::ptrdiff_t number) : isThere(number > 0), count(static_cast<std::int32_t>(number))
    {
    }
};

/// Stores a record in which nothing is known for each table.
template <typename... Tables>
void StoreDefaults(const Tables&... tables)
{
    (tables.StoreDefaults(), ...);
}

/// Stores each device under its index, from 0 on.
/// @param devices records, or merged ones, of which the log shows the sources under the detector's name
template <typename Table, typename Devices>
void StoreList(const Table& table, const Devices& devices, const wchar_t* detector)
{
    int index = 0;
    for (const auto& device : devices) {
        if constexpr (requires { table.Store(device, detector, index); })
            table.Store(device, detector, index++);
        else
            table.Store(device, index++);
    }
}

/// The facts that several tables store, in the order in which they are stored.
template <typename... Tables>
StoredFacts CollectFacts(const Tables&... tables)
{
    StoredFacts facts;
    (tables.List(facts), ...);
    return facts;
}

}  // namespace kel
