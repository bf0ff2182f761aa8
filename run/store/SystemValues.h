#pragma once

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "run/store/SystemValue.h"
#include "run/store/SystemValueID.h"
#include "values/Reason.h"
#include "values/Value.h"

namespace kel {

/// The value store: at most one value per id, in the order in which the ids were first added. Every look-up
/// is a scan from the front.
class SystemValues {
public:
    SystemValues() = default;
    virtual ~SystemValues() = default;
    SystemValues(const SystemValues&) = default;
    SystemValues& operator=(const SystemValues&) = default;

    /// Adds every value named in a groups text, such as
    /// `<groups><group id="71060"><value>...</value></group></groups>`.
    void AddValues(const std::wstring& text);

    /// Adds a value, or replaces the value of an equal id in its place.
    /// @throws std::invalid_argument for a null value
    void AddValue(const SystemValueID& id, const boost::shared_ptr<const Value>& value);

    /// Adds a copy of a value: its clone, where its class has one.
    template <std::derived_from<Value> Concrete>
    void AddValue(const SystemValueID& id, const Concrete& value)
    {
        boost::shared_ptr<const Value> copy;
        if constexpr (requires { value.Clone(); })
            copy.reset(value.Clone());
        else
            copy = boost::make_shared<const Concrete>(value);
        if (!copy)
            throw std::bad_alloc();
        AddValue(id, copy);
    }

    /// Adds a plain text, up to its first zero.
    void AddValue(const SystemValueID& id, const std::wstring& text);

    /// Adds a plain text under a group number, index 0.
    void AddValue(unsigned number, const std::wstring& text);

    bool Exists(const SystemValueID& id) const;

    /// Overwrites the first element with an equal id, keeping its place.
    /// @return whether there was one
    bool ReplaceValue(const SystemValue& value);

    /// @throws std::out_of_range when there is no such value
    const SystemValue& GetValue(const SystemValueID& id) const;

    /// The value, or null when there is none.
    const SystemValue* TryGetValue(const SystemValueID& id) const;

    /// Notes why a value is empty or missing, until a value is added under its id.
    void SetReason(const SystemValueID& id, const Reason& reason);

    /// Whether SetReason was called since a value was last added under the id.
    bool HasReason(const SystemValueID& id) const { return FindNoted(id) != noted.end(); }

    /// Why a value is empty or missing, NotThere unless another reason was noted; nullopt for a value that
    /// has a text.
    std::optional<Reason> FindReason(const SystemValueID& id) const;

    std::vector<SystemValue>::const_iterator begin() const { return values.begin(); }
    std::vector<SystemValue>::const_iterator end() const { return values.end(); }

private:
    /// Where in `reasons` the reason of an id stands.
    struct NotedReason {
        unsigned group;
        std::int32_t index;
        std::size_t place;
    };

    std::vector<NotedReason>::const_iterator FindNoted(const SystemValueID& id) const;

    std::vector<SystemValue> values;
    std::vector<NotedReason> noted;  // beside the values, at most one per id
    std::vector<Reason> reasons;     // each of them once: one failure empties many values
};

}  // namespace kel
