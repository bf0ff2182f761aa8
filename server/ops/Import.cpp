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
#include "verdict/RequirementsCheck.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

/// Throws std::runtime_error when the file's name is not a referrer.
std::string ReadFile(const std::filesystem::path& path)
{
    if (!IsReferrer(path.stem().string()))
        throw std::runtime_error(
            "its name is not a referrer: 1 to 64 letters, digits, hyphens and underscores");
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Throws std::runtime_error with what is wrong, without the file's name.
std::string ReadRequirements(const std::filesystem::path& path, ImportCheck check)
{
    std::string text = ReadFile(path);
    if (check == ImportCheck::Full)
        ReadChecked(text);
    else
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

void Import(const std::filesystem::path& folder, Database& database, ImportCheck check)
{
    std::map<std::string, std::string> sets;
    for (const auto& path : FindFiles(folder)) {
        try {
            sets[path.stem().string()] = ReadRequirements(path, check);
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
    const auto logError = [](const std::filesystem::path& path, const std::string& reason) {
        Log(Level::Error, "not-valid", {{"file", path.string()}, {"reason", reason}});
    };
    for (const auto& path : files) {
        try {
            const CheckedRequirements checked = CheckRequirements(ReadFile(path));
            const bool isValid = checked.ErrorText().empty();
            for (const Finding& finding : checked.findings) {
                if (finding.isError)
                    logError(path, finding.text);
                else
                    Log(Level::Warning, "doubtful", {{"file", path.string()}, {"reason", finding.text}});
            }
            wrong += isValid ? 0 : 1;
            if (isValid)
                Log(Level::Info, "valid",
                    {{"file", path.string()}, {"lines", std::to_string(checked.requirements.lines.size())}});
        } catch (const std::exception& error) {
            ++wrong;
            logError(path, error.what());
        }
    }
    if (wrong > 0)
        throw std::runtime_error(fmt::format(
            "an import would publish nothing: files that are not valid: {} of {}", wrong, files.size()));
}

}  // namespace kel::server
