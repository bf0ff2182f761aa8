#include "server/admin/FailingLine.h"

#include <fmt/format.h>

#include "server/store/RequirementSets.h"
#include "verdict/Requirements.h"
#include "verdict/text/Text.h"

namespace kel::server {

std::vector<LineOfSet> FindLines(Database& database, const std::string& referrer, const std::string& label)
{
    std::vector<LineOfSet> lines;
    const std::string wanted = Lower(Trim(label));
    RequirementSets sets(database);
    for (const PublishedSet& version : sets.Versions(referrer)) {
        const auto read = Requirements::ReadStored(sets.Text(version.id));
        for (std::size_t i = 0; read && i < read->lines.size(); ++i) {
            if (lines.size() == ReportFilter::MaxLines)
                return lines;
            if (Lower(Trim(read->lines[i].label.Default())) == wanted)
                lines.push_back({version.id, static_cast<int>(i) + 1});
        }
    }
    return lines;
}

Html NameOfLine(Database& database, const std::string& referrer, int version, int line)
{
    Html name = fmt::format("line {} of version {}", line, version);
    RequirementSets sets(database);
    for (const PublishedSet& set : sets.Versions(referrer)) {
        if (set.version != version)
            continue;
        const auto read = Requirements::ReadStored(sets.Text(set.id));
        if (read && line >= 1 && line <= static_cast<int>(read->lines.size()))
            name +=
                " (" + Html::Stored(read->lines[static_cast<std::size_t>(line) - 1].label.Default()) + ")";
    }
    return name;
}

}  // namespace kel::server
