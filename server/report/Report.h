#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "server/base/Fault.h"
#include "server/report/PlainGroups.h"
#include "server/report/Xml.h"
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

    /// The same for a stored report, without the checks that it passed when it arrived; nothing when this
    /// program's rules refuse it. With a group, others may be left out, which is faster.
    static std::optional<Report> ReadStored(std::string_view xml, int group = 0);

    /// The text of a group's first value; null when the report has none, which is not the same as an empty
    /// one.
    const std::string* Value(int group) const;
    /// The texts of a group's values by index, from 0 up to the first one that is missing. By default at most
    /// as many as a verdict judges.
    std::vector<const std::string*> Devices(int group, std::size_t max = Verdict::MaxIndexes) const;
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

    using Values = std::vector<std::pair<std::pair<std::string, long>, std::string>>;
    /// All of them, ordered by id and index.
    const Values& All() const& { return values; }
    const Values& All() && = delete;  // the reference would dangle

private:
    static Report From(std::vector<GroupText> groups);
    static Report From(const pugi::xml_document& document);
    /// The first value that is not before that place.
    Values::const_iterator Find(int group, long index) const;

    Values values;
};

}  // namespace kel::server
