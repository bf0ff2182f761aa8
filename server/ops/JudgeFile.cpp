#include "server/ops/JudgeFile.h"

#include <fmt/format.h>
#include <fstream>
#include <map>
#include <ostream>
#include <stdexcept>

#include "server/report/FailingFirst.h"
#include "server/report/ReportFile.h"
#include "server/store/RequirementSets.h"
#include "verdict/Rendering.h"
#include "verdict/files/EmptyValues.h"
#include "verdict/files/FileError.h"
#include "verdict/files/MachineFile.h"
#include "verdict/text/Printable.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

std::string ReadWhole(const std::string& path, std::size_t maxBytes)
{
    std::ifstream file(path, std::ios::binary);
    std::string bytes(maxBytes + 1, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (file.bad() || (!file.eof() && file.fail()))
        throw std::runtime_error(path + ": it cannot be read. Does it exist, and may you read it?");
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    if (bytes.size() > maxBytes)
        throw std::runtime_error(fmt::format("{}: it has more than {} MB", path, maxBytes >> 20));
    return bytes;
}

/// Requirements, and the words with which a verdict names them.
struct NamedRequirements {
    Requirements requirements;
    std::string name;
};

NamedRequirements ReadProduct(const std::string& product,
                              const std::function<std::unique_ptr<Database>()>& open)
{
    if (!IsReferrer(product)) {
        const std::string text = ReadWhole(product, Requirements::MaxFile);
        try {
            return {Requirements::Read(text), product};
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(product + ": " + Printable(error.what()));
        }
    }
    const std::unique_ptr<Database> database = open();
    const auto set = RequirementSets(*database).Newest(product);
    if (!set)
        throw std::runtime_error(fmt::format(
            "the product '{}' has no published requirements; the overview of the administration lists those "
            "that have",
            product));
    return {Requirements::Read(RequirementSets(*database).Text(set->id)),
            fmt::format("version {} of {}", set->version, product)};
}

void WriteText(std::ostream& output, const NamedRequirements& by, const Verdict& verdict,
               const Snapshot& snapshot)
{
    std::multimap<std::string, std::string> reasons;
    for (const EmptyValue& value : FindEmptyValues(by.requirements, verdict, snapshot))
        reasons.emplace(value.label, value.Text());
    output << Printable(fmt::format("{}, by {}", verdict.title, by.name)) << "\n\n";
    for (const VerdictLine* line : FailingFirst(verdict)) {
        const auto write = [&](std::string_view head, const std::string& text) {
            output << fmt::format("{:9}", head) << Printable(text) << '\n';
        };
        write(ToString(line->result),
              fmt::format("{}{}: needs {}; found {}", line->label, line->recommended ? " (recommended)" : "",
                          line->needed, line->found.empty() ? "nothing" : line->found));
        if (line->result != Result::Pass && !line->advice.empty())
            write("", line->advice);
        const auto [first, last] = reasons.equal_range(line->label);
        for (auto reason = first; line->result != Result::Pass && reason != last; ++reason)
            write("", reason->second);
    }
    output << '\n' << CountText(verdict) << "\nTotal: " << ToString(verdict.total) << '\n';
}

}  // namespace

int JudgeFile(const std::string& product, const std::string& file, bool asJson,
              const std::function<std::unique_ptr<Database>()>& open, std::ostream& output)
{
    Snapshot snapshot;
    try {
        snapshot = ReadReportFile(ReadWhole(file, MaxMachineFile));
    } catch (const FileError& error) {
        throw std::runtime_error(file + ": " + error.what());
    }
    const NamedRequirements by = ReadProduct(product, open);
    const Verdict verdict = Judge(by.requirements, snapshot.Lookup());
    if (asJson)
        output << RenderJson(verdict, "requirements", "1.0") << '\n';
    else
        WriteText(output, by, verdict, snapshot);
    return verdict.total == Result::Pass ? 0 : verdict.total == Result::Fail ? 1 : 2;
}

}  // namespace kel::server
