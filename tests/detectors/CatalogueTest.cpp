#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "detectors/Components.h"
#include "support/TestFiles.h"

namespace kel {
namespace {

/// What the catalogue says about an id.
struct Entry {
    std::string detector;
    std::string type;

    bool operator==(const Entry&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Entry& entry)
{
    return stream << entry.detector << ", " << entry.type;
}

using Catalogue = std::multimap<unsigned, Entry>;

Catalogue ReadCatalogue()
{
    Catalogue catalogue;
    std::ifstream file(test::TestFile(KEL_CATALOGUE));
    std::string line;
    std::getline(file, line);  // the columns' names
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        std::string id, detector, name, type;
        std::getline(fields, id, '\t');
        std::getline(fields, detector, '\t');
        std::getline(fields, name, '\t');
        std::getline(fields, type, '\t');
        if (detector != "System")  // the session's identifiers, which no detector stores
            catalogue.insert({static_cast<unsigned>(std::stoul(id)), {detector, type}});
    }
    return catalogue;
}

Catalogue ListDetectors()
{
    Catalogue catalogue;
    for (const auto& [detector, facts] : Components::ListFacts()) {
        for (const StoredFact& fact : facts)
            catalogue.insert({fact.id, {detector, std::string(fact.type)}});
    }
    return catalogue;
}

/// The entry of an id, or a text that says that there is none or several.
Entry Only(const Catalogue& catalogue, unsigned id)
{
    const auto count = catalogue.count(id);
    return count == 1 ? catalogue.find(id)->second : Entry{std::to_string(count) + " entries", ""};
}

TEST(Catalogue, ListsEveryStoredFact)
{
    const Catalogue written = ReadCatalogue(), stored = ListDetectors();
    ASSERT_FALSE(written.empty()) << KEL_CATALOGUE;
    for (const auto& [id, entry] : stored)
        EXPECT_EQ(Only(written, id), entry) << "id " << id << " in catalogue/values.tsv";
    for (const auto& [id, entry] : written)
        EXPECT_EQ(Only(stored, id), entry) << "id " << id << " among the detectors' facts";
}

}  // namespace
}  // namespace kel
