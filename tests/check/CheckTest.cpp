#include <gmock/gmock.h>

#include <string>
#include <tuple>
#include <vector>

#include "check/text/CheckName.h"
#include "check/text/ConsentPage.h"
#include "check/text/ProblemPage.h"
#include "check/text/VerdictPage.h"

namespace kel::check {
namespace {

using testing::HasSubstr;

#define SESSION "0f8fad5b-d9cb-469f-a165-70867728950e"

TEST(CheckName, IsReadFromTheFileAndFromTheLinkAlone)
{
    const std::string longest(64, 'p');
    const std::tuple<std::string, const char*> rows[] = {
        {"check.demo." SESSION ".exe", "demo"},
        {"check.demo." SESSION " (1).exe", "demo"},
        {"check.demo." SESSION "(12).exe", "demo"},
        {"CHECK.De-m_0." SESSION " (1).EXE", "De-m_0"},
        {"check." + longest + "." SESSION ".exe", longest.c_str()},
        {"check." + longest + "p." SESSION ".exe", ""},
        {"check.exe", ""},
        {"check..exe", ""},
        {"check.demo.exe", ""},
        {"check.." SESSION ".exe", ""},
        {"check.de mo." SESSION ".exe", ""},
        {"check.demo.0f8fad5b-d9cb-469f-a165-70867728950g.exe", ""},
        {"check.demo.0f8fad5bd9cb-469f-a165-70867728950e1.exe", ""},
        {"check.demo." SESSION "0.exe", ""},
        {"check.demo." SESSION " (x).exe", ""},
        {"check.demo." SESSION " ().exe", ""},
        {"check.demo." SESSION ".exe.exe", ""},
        {"recheck.demo." SESSION ".exe", ""},
        {"kel-check:demo/" SESSION, "demo"},
        {"kel-check://demo/" SESSION, ""},
        {"kel-check:demo/" SESSION "/", ""},
        {"kel-check:demo/" SESSION " --service x", ""},
        {"kel-check:/" SESSION, ""},
        {"check:demo/" SESSION, ""},
    };
    for (const auto& [text, product] : rows) {
        const auto name = text.find(':') == text.npos ? ParseFileName(text) : ParseLink(text);
        EXPECT_EQ(name ? name->product : "", product) << text;
        if (name) {
            EXPECT_EQ(name->session, SESSION) << text;
        }
    }
}

TEST(CheckPages, ConsentNamesWhatIsReadAndWhereItGoes)
{
    const std::vector<int> values = {71424, 71063, 71061, 71398, 71069};
    const CheckName name{"demo", SESSION};
    const Page page = ConsentPage(name, " Title\x1B\n", "host.example", values);
    EXPECT_EQ(page.instruction, "Check this computer for “Title\uFFFD”?");
    EXPECT_EQ(ConsentPage(name, "", "host.example", values).instruction, "Check this computer for “demo”?");
    EXPECT_LT(ConsentPage(name, std::string(9999, 'x'), "host.example", values).instruction.size(), 200U);
    EXPECT_THAT(page.content, HasSubstr("host.example:\n\nProcessor: name\nMemory: total physical memory\n"));
    for (const char* expected : {"host.example", "product: demo", SESSION, "a file of 1 MB is downloaded"})
        EXPECT_THAT(page.hidden, HasSubstr(expected));
    EXPECT_EQ(page.content.find("session"), page.content.npos);
    EXPECT_EQ(ListValues({71061, 71254, 71062, 71296, 71063}, 2),
              "Processor: name; logical processors; 2 more\nMemory: total physical memory");
}

TEST(CheckPages, TheVerdictBeginsWithWhatIsNotMet)
{
    Verdict verdict{"Title\x1B", {}, Result::Fail};
    verdict.lines.push_back({0, "Met", "any", "7", Result::Pass, "Never shown.", false, {}});
    verdict.lines.push_back({0, "Hint", "yes", "No", Result::Fail, "", true, {}});
    verdict.lines.push_back({0, "Disk", "any", "", Result::Unknown, "", false, {}});
    verdict.lines.push_back({0, "Memory", "at least 8 GB", "4.0 GB", Result::Fail, "Add memory.", false, {}});
    const Page page = VerdictPage(verdict);
    EXPECT_EQ(page.instruction, "1 of 3 requirements is not met");
    EXPECT_EQ(page.content,
              "Title\uFFFD\n\nNot met:\n• Memory: needs at least 8 GB; found 4.0 GB\n   Add memory.\n\n"
              "Could not be checked:\n• Disk: needs any; not found\n\n"
              "Recommended, but not met:\n• Hint: needs yes; found No");
    EXPECT_EQ(page.hidden, "Met:\n• Met: needs any; found 7");
    verdict.lines.assign(30, verdict.lines.back());
    EXPECT_EQ(VerdictPage(verdict).instruction, "30 of 30 requirements are not met");
    EXPECT_THAT(VerdictPage(verdict).content, HasSubstr("and 18 more"));
    verdict.total = Result::Unknown;
    EXPECT_EQ(VerdictPage(verdict).instruction, "The requirements could not be checked");
}

TEST(CheckPages, EachProblemHasItsOwnSentence)
{
    const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
        {"answered", "Too \x1Bmany", "The service refused the check.", "Too \uFFFDmany"},
        {"answered", "", "The service refused the check.", "no reason"},
        {"unknown product", "", "The service does not know the product “demo”.", "owner"},
        {"another host answered", "<html>", "Another host answered in place of the service.", "Log in"},
        {"cut", "7", "The answer of the service was cut off.", "connection"},
        {"not reached: 12007", "", "The service cannot be reached.",
         "host.example did not answer (not reached: 12007)"},
    };
    for (const auto& [state, text, sentence, advice] : rows) {
        const Page page = RefusedPage({text, state}, {"demo", SESSION}, "host.example");
        EXPECT_EQ(page.instruction, sentence) << state;
        EXPECT_THAT(page.content, HasSubstr(advice)) << state;
    }
    EXPECT_TRUE(program::IsGroupList({"71063|71094,5", "answered"}));
    EXPECT_FALSE(program::IsGroupList({"Too many", "answered"}));
    EXPECT_FALSE(program::IsGroupList({"71063|71", "cut"}));
    EXPECT_FALSE(program::IsGroupList({"", "answered", true})) << "a refusal without a text";
}

}  // namespace
}  // namespace kel::check
