#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::server {

/// A group in the text of a report.
struct GroupText {
    std::string_view id;
    long index = 0;
    std::string_view value;
    bool hasReferences = false;  // the value is as XML writes it, with "&amp;"

    std::string Value() const;
};

/// The groups of a well-formed report in exactly the form in which the control writes them, several times
/// faster than an XML parser: `<groups><group index="0" id="71063"><value>8.0 GB</value></group>…</groups>`,
/// without carriage returns, and without references but the five that have names. Nothing for a report in any
/// other form, which needs the parser.
std::optional<std::vector<GroupText>> FindPlainGroups(std::string_view xml);

}  // namespace kel::server
