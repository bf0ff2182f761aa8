#include "server/ops/Import.h"

#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

#include "server/base/Log.h"
#include "server/ops/Accounts.h"
#include "server/store/RequirementSets.h"
#include "verdict/Requirements.h"
#include "verdict/text/Text.h"

namespace kel::server {

void Import(const std::filesystem::path& folder, Database& database)
{
    std::map<std::string, std::string> sets;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".json")
            continue;
        const std::string referrer = entry.path().stem().string();
        try {
            if (!IsReferrer(referrer))
                throw std::runtime_error(
                    "its name is not a referrer: 1 to 64 letters, digits, hyphens and underscores");
            std::ifstream file(entry.path(), std::ios::binary);
            std::string text{std::istreambuf_iterator<char>(file), {}};
            Requirements::Read(text);
            sets[referrer] = std::move(text);
        } catch (const std::exception& error) {
            throw std::runtime_error(fmt::format("{}: {}", entry.path().string(), error.what()));
        }
    }
    if (sets.empty())
        throw std::runtime_error(folder.string() + " has no requirement files");
    for (const auto& [referrer, text] : sets) {
        const int version = RequirementSets(database).Publish(referrer, text, "import", CommandLine);
        Log(Level::Info, "published", {{"referrer", referrer}, {"version", std::to_string(version)}});
    }
}

}  // namespace kel::server
