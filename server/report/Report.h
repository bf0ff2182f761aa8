#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "server/base/Fault.h"
#include "verdict/Verdict.h"

namespace kel::server {

/// A report names no session, or one that is too long.
struct NoSession : Fault {
    NoSession() : Fault(400, "the report names no session, or one that is too long") {}
};

/// The values of a report as the control uploads it: texts by the id of their group and their index.
class Report {
public:
    static constexpr int Session = SessionGroup;
    static constexpr int Referrer = ReferrerGroup;
    static constexpr int User = UserGroup;
    static constexpr int Machine = 71207;

    /// Reads `<groups><group index="…" id="…"><value>…</value></group>…</groups>`. Of values that share id
    /// and index the last counts; a group without an index has 0. Throws Fault 400 when the text is not a
    /// report, or names no session.
    static Report Read(std::string_view xml);
    /// The same, also for a report that names no session.
    static Report ReadValues(std::string_view xml);

    /// The text of a group's first value; null when the report has none, which is not the same as an empty
    /// one.
    const std::string* Value(int group) const;
    /// A look-up of its values for a verdict; the report has to outlive it.
    ValueLookup Lookup() const&;
    ValueLookup Lookup() && = delete;
    /// The text of a group's first value, empty when there is none.
    const std::string& Text(int group) const;
    /// Whether a value of the group, of any index, is not blank.
    bool Has(int group) const;
    std::size_t Count() const { return values.size(); }
    /// About how much memory it takes.
    std::size_t Bytes() const;

    using Values = std::map<std::pair<std::string, long>, std::string>;
    /// All of them, by id and index.
    const Values& All() const& { return values; }
    const Values& All() && = delete;  // the reference would dangle

private:
    Values values;
};

}  // namespace kel::server
