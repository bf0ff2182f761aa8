#include <map>
#include <string>
#include <utility>

#include "program/Commands.h"
#include "program/FactTable.h"
#include "program/files/ReadSnapshot.h"
#include "program/text/Output.h"
#include "program/text/Table.h"

namespace kel::program {

namespace {

/// How a value is shown beside another one.
std::string Shown(const Fact* fact)
{
    return fact == nullptr ? "(not in the file)" : fact->text.empty() ? "–" : fact->text;
}

/// The facts of both files by id and index; null where a file lacks one.
std::map<std::pair<int, int>, std::pair<const Fact*, const Fact*>> Join(const Snapshot& one,
                                                                        const Snapshot& other)
{
    std::map<std::pair<int, int>, std::pair<const Fact*, const Fact*>> joined;
    for (const Fact& fact : one.facts)
        joined[{fact.id, fact.index}].first = &fact;
    for (const Fact& fact : other.facts)
        joined[{fact.id, fact.index}].second = &fact;
    return joined;
}

}  // namespace

int CompareFiles(const Options& options)
{
    const Snapshot one = ReadSnapshotFile(options.files.front());
    const Snapshot other = ReadSnapshotFile(options.files.back());
    Table table({"Id", "Value", options.files.front(), options.files.back()});
    for (const auto& [key, facts] : Join(one, other)) {
        const auto& [first, second] = facts;
        if (first != nullptr && second != nullptr && first->text == second->text)
            continue;
        table.AddRow({{std::to_string(key.first)},
                      {NameOf(first != nullptr ? *first : *second)},
                      {Shown(first)},
                      {Shown(second)}});
    }
    Output& output = Output::Standard();
    if (table.IsEmpty()) {
        output.WriteLine("All values are the same.");
        return 0;
    }
    table.Write(output);
    return 1;
}

}  // namespace kel::program
