#include "server/ops/Import.h"

#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>

#include "server/base/Log.h"
#include "server/ops/Accounts.h"
#include "server/store/RequirementSets.h"
#include "verdict/Requirements.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

/// Throws std::runtime_error with what is wrong, without the file's name.
std::string ReadRequirements(const std::filesystem::path& path)
{
    if (!IsReferrer(path.stem().string()))
        throw std::runtime_error(
            "its name is not a referrer: 1 to 64 letters, digits, hyphens and underscores");
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    Requirements::Read(text);
    return text;
}

/// The folder's requirement files, by name.
std::set<std::filesystem::path> FindFiles(const std::filesystem::path& folder)
{
    std::set<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".json")
            files.insert(entry.path());
    }
    if (files.empty())
        throw std::runtime_error(folder.string() + " has no requirement files");
    return files;
}

}  // namespace

void Import(const std::filesystem::path& folder, Database& database)
{
    std::map<std::string, std::string> sets;
    for (const auto& path : FindFiles(folder)) {
        try {
            sets[path.stem().string()] = ReadRequirements(path);
        } catch (const std::exception& error) {
            throw std::runtime_error(fmt::format("{}: {}", path.string(), error.what()));
        }
    }
    for (const auto& [referrer, text] : sets) {
        const int version = RequirementSets(database).Publish(referrer, text, "import", CommandLine);
        Log(Level::Info, "published", {{"referrer", referrer}, {"version", std::to_string(version)}});
    }
}

void CheckImport(const std::filesystem::path& folder)
{
    std::size_t wrong = 0;
    const auto files = FindFiles(folder);
    for (const auto& path : files) {
        try {
            const std::string text = ReadRequirements(path);
            Log(Level::Info, "valid",
                {{"file", path.string()}, {"lines", std::to_string(Requirements::Read(text).lines.size())}});
        } catch (const std::exception& error) {
            ++wrong;
            Log(Level::Error, "not-valid", {{"file", path.string()}, {"reason", error.what()}});
        }
    }
    if (wrong > 0)
        throw std::runtime_error(fmt::format(
            "an import would publish nothing: files that are not valid: {} of {}", wrong, files.size()));
}

}  // namespace kel::server
