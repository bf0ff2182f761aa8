#include <gmock/gmock.h>

#include <set>
#include <tuple>

#include "kit/Comparisons.h"
#include "kit/Responder.h"
#include "kit/Results.h"
#include "kit/Steps.h"
#include "kit/UnitTests.h"
#include "program/text/UserError.h"
#include "support/TestFiles.h"

namespace kel::kit {
namespace {

TEST(Kit, ComparesByTheKindOfTheRow)
{
    const std::tuple<const char*, double, const char*, const char*, bool> rows[] = {
        {"text", 0, "Intel(R) Core(TM) i7", " Intel(R)  Core(TM) I7 ", true},
        {"text", 0, "Intel(R) Core(TM) i7", "Intel(R) Core(TM) i5", false},
        {"part", 0, "SAMSUNG MZVLB1T0", "NVMe SAMSUNG MZVLB1T0HBLR", true},
        {"part", 0, "Windows 11", "Microsoft Windows 10 Pro", false},
        {"part", 0, "", "Microsoft Windows 10 Pro", false},
        {"yes", 0, "Yes", "True", true},
        {"yes", 0, "No", "0", true},
        {"yes", 0, "Yes", "False", false},
        {"version", 0, "4.8.1", "4.8.09032", true},
        {"version", 0, "4.7.2", "4.8.09032", false},
        {"number", 0, "16", "16", true},
        {"number", 0, "16", "8", false},
        {"number", 0, "", "8", false},
        {"bytes", 1, "7.8 GB", "8375186227", true},
        {"bytes", 1, "7.8 GB", "8589934592", false},
        {"kilobytes", 0, "24.0 MB", "24576", true},
        {"megabytes", 15, "6.0 GB", "6013 MB", true},
        {"megabytes", 15, "4.0 GB", "6013 MB", false},
        {"megahertz", 5, "2.3 GHz", "2304", true},
        {"megahertz", 5, "2.3 GHz", "2995", false},
    };
    for (const auto& [kind, tolerance, found, answer, isSame] : rows) {
        const ComparedValue row{71061, "wmi", "", kind, tolerance, false, false};
        EXPECT_EQ(IsSame(row, found, answer), isSame) << kind << ": " << found << " and " << answer;
    }
    EXPECT_THROW(IsSame({71061, "wmi", "", "colour", 0, false, false}, "", ""), program::UserError);
}

TEST(Kit, MissesDevicesThatTheToolLists)
{
    using Texts = std::vector<std::string>;
    const std::tuple<bool, Texts, Texts, bool> rows[] = {
        // whether the product has to list all, its values, the tool's, and whether they are the same
        {true, {"A", "B"}, {"B", "A"}, true},
        {true, {"A"}, {"A", "B"}, false},
        {true, {"A"}, {"A", "A"}, false},
        {true, {"A", "A"}, {"A"}, true},
        {false, {"A"}, {"A", "B"}, true},
        {false, {"A", "C"}, {"A", "B"}, false},
        {false, {}, {"A"}, false},
    };
    for (const auto& [needsAll, found, answers, areSame] : rows)
        EXPECT_EQ(AreSame({72502, "wmi", "", "text", 0, false, false, needsAll}, found, answers), areSame)
            << needsAll << testing::PrintToString(found) << testing::PrintToString(answers);
}

TEST(Kit, JudgesStepsByTheirCodeAndOutput)
{
    const std::tuple<const char*, unsigned long, const char*, bool> rows[] = {
        {"0", 0, "", true},
        {"0", 1, "", false},
        {"1605", 1605, "", true},
        {"1605", 0, "", false},
        {"0 to 2", 2, "", true},
        {"0 to 2", 3, "", false},
        {"1 to 2", 0, "", false},
        {"prints version ", 0, "version 4.5.1\n", true},
        {"prints version ", 0, "none\n", false},
        {"prints version ", 1, "At line:1: 'version ' + (New-Object", false},
        {"prints GB", 0, "7.8 GB\n", true},
        {"prints GB", 0, "C:\\Build\\value.js", false},
    };
    for (const auto& [expected, code, output, isExpected] : rows) {
        EXPECT_EQ(IsExpected(expected, {true, false, code, output, 0}), isExpected)
            << expected << code << output;
        EXPECT_FALSE(IsExpected(expected, {true, true, code, output, 0})) << expected << " too late";
        EXPECT_FALSE(IsExpected(expected, {false, false, code, output, 0})) << expected << " not started";
    }
}

TEST(Kit, ReadsItsTables)
{
    const std::string folder = test::TestFile(KEL_KIT).string();
    const std::vector<ComparedValue> comparisons = ReadComparisons(folder + "/comparisons.tsv");
    EXPECT_GE(comparisons.size(), 60U);
    std::set<int> complete;
    for (const ComparedValue& row : comparisons) {
        if (row.needsAll)
            complete.insert(row.id);
    }
    EXPECT_THAT(complete, testing::ElementsAre(72002, 72502, 72702, 72802));
    EXPECT_GE(ReadSteps(folder + "/steps.tsv").size(), 30U);
}

TEST(Kit, ReadsWhatOtherProgramsPrint)
{
    EXPECT_THAT(ReadTestNames("Wire.\n  Sends\n  Waits\nOf/Machines.\n  Store/a  # GetParam() = \"a.txt\"\n"),
                testing::ElementsAre("Wire.Sends", "Wire.Waits", "Of/Machines.Store/a"));
    EXPECT_THAT(CsvCells("\"PC\",\"Windows, 11\",3"), testing::ElementsAre("PC", "Windows, 11", "3"));
    EXPECT_THAT(ElementsOf("<D><N>one</N><N> two </N></D>", "N"), testing::ElementsAre("one", "two"));
    EXPECT_EQ(RequestPath("GET http://service.example/Data?a=1 HTTP/1.1"), "/Data?a=1");
    EXPECT_EQ(RequestPath("POST /upload HTTP/1.1"), "/upload");
}

TEST(Kit, MasksAndKeepsResults)
{
    Snapshot snapshot;
    snapshot.facts = {{71072, 0, "10.0.226.31", ""}};
    Results results{"4.5.1",
                    "now",
                    "Windows 11",
                    {{"Steps", "a step", State::Wrong, "0",
                      "at 192.168.77.5, serial number: A77B, version 10.0.226.31", 0.5}}};
    MaskResults(results, snapshot);
    const Rows rows = ReadRows(WriteResults(results));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].found, "at <address 1>, serial number: <serial 1>, version 10.0.226.31");
    EXPECT_EQ(rows[0].state, State::Wrong);
    EXPECT_THAT(WritePage(results), testing::HasSubstr("&lt;address 1&gt;"));
    EXPECT_THAT(WritePage(results), testing::HasSubstr("1 are wrong."));
}

}  // namespace
}  // namespace kel::kit
