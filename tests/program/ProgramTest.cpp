#include <gmock/gmock.h>
#include <windows.h>

#include <string>
#include <tuple>
#include <vector>

#include "platform/Handles.h"
#include "program/CommandLine.h"
#include "program/files/File.h"
#include "program/files/ReadSnapshot.h"
#include "program/text/Characters.h"
#include "program/text/Table.h"
#include "program/text/UserError.h"
#include "support/TestFolder.h"
#include "verdict/files/SupportFile.h"

namespace kel::program {
namespace {

using testing::HasSubstr;

/// The line that a call is refused with; empty when it is not.
template <typename Call>
std::string Refusal(Call call)
{
    try {
        call();
        return "";
    } catch (const UserError& error) {
        return error.what();
    }
}

/// What a function writes, as a file gets it.
template <typename Write>
std::string Written(Write write)
{
    const test::TestFolder folder;
    const std::string path = (folder.Path() / "output").string();
    {
        const OwnedHandle file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        Output output(file.get());
        write(output);
        output.Flush();
    }
    return ReadFile(path, 65536);
}

TEST(ProgramText, LinesBreakAtBlanksAndWithinLongWords)
{
    const std::tuple<const char*, int, std::vector<std::string>> rows[] = {
        {"one two three", 7, {"one two", "three"}},
        {"one two", 6, {"one", "two"}},
        {"onetwothree", 4, {"onet", "woth", "ree"}},
        {"", 4, {""}},
        {"漢字漢", 5, {"漢字", "漢"}},                  // two columns each
        {"e\u0301e\u0301", 1, {"e\u0301", "e\u0301"}},  // a combining accent takes none
        {"漢", 1, {"漢"}},
    };
    for (const auto& [text, columns, expected] : rows) {
        std::string_view rest = text;
        std::vector<std::string> lines;
        do {
            lines.emplace_back(TakeLine(rest, columns));
        } while (!rest.empty());
        EXPECT_EQ(lines, expected) << text;
    }
}

TEST(ProgramText, NoValueControlsTheConsole)
{
    EXPECT_EQ(Printable("a\x1B[31mb\r\n\u202Ec\xC3(\u00E9"), "a\uFFFD[31mb\uFFFD\uFFFD\uFFFDc\uFFFD(\u00E9");
}

TEST(ProgramText, ATableFitsItsLineAndWrapsTheWidestColumn)
{
    const std::string text = Written([](Output& output) {
        Table table({"Id", "Value"});
        table.AddRow({{"1"}, {std::string(100, 'x')}});
        table.AddRow({{"22"}, {"Zo\u00EB"}});
        table.Write(output, 2);
    });
    EXPECT_EQ(text, "  Id  Value\r\n  1   " + std::string(74, 'x') + "\r\n      " + std::string(26, 'x') +
                        "\r\n  22  Zo\u00EB\r\n");
}

TEST(ProgramCommandLine, WrongArgumentsAreRefusedInOneLine)
{
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{"fact"}, "fact"},
        {{"facts", "--json", "--csv"}, "--json excludes --csv"},
        {{"check"}, "A product, or --requirements with a file, is required"},
        {{"check", "a b"}, "\"a b\" is not a product"},
        {{"check", "demo", "--requirements", "f"}, "excludes"},
        {{"check", "demo", "--service", "host:80"}, "not the name of a host"},
        {{"report"}, "file is required"},
        {{"compare", "a"}, "files"},
        {{"explain", "/folder/file"}, ""},
        {{"facts", "explain"}, ""},  // a word that is a command, too, is a subject here
    };
    for (const auto& [arguments, expected] : rows) {
        const std::string reason = Refusal([&words = arguments] { ReadCommandLine(words); });
        EXPECT_THAT(reason, HasSubstr(expected)) << testing::PrintToString(arguments);
        EXPECT_EQ(reason.empty(), *expected == '\0') << reason;
        EXPECT_EQ(reason.find('\n'), std::string::npos) << reason;
    }
}

TEST(ProgramFiles, ASupportFileHoldsTheWholeSnapshot)
{
    Snapshot snapshot{"2026-01-31T12:00:00Z",
                      "4.5.1.0",
                      "Windows 11",
                      "kel.exe",
                      "demo",
                      {{71063, 0, "7.8 \u20AC", ""}, {72504, 1, "", "not there"}, {5, 0, "\x02", ""}},
                      {{71069, 0, "", "not asked for"}},
                      Verdict{"T", {{0, "M", "any", "7", Result::Fail, "Add.", true, {}}}, Result::Unknown},
                      "one\ntwo\n"};
    const std::string text = WriteSupportFile(snapshot);
    EXPECT_THAT(text, HasSubstr("\"area\": \"memory\",\n   \"name\": \"total physical memory\""));
    EXPECT_EQ(WriteSupportFile(ReadSnapshot(text)), text);
    snapshot.log.clear();
    EXPECT_NE(WriteSupportFile(snapshot), text);
}

TEST(ProgramFiles, ReportsAndExportsAreRead)
{
    const std::string text = "<value>7 &amp; \u20AC\x02</value></group>";
    const std::tuple<const char*, std::string, std::string> rows[] = {
        {"report", "<groups><group index=\"1\" id=\"5\">" + text + "<group id=\"x\"/></groups>  ",
         "7 & \u20AC\uFFFD"},
        {"report with a mark", "\xEF\xBB\xBF<groups><group index=\"1\" id=\"5\">" + text + "</groups>",
         "7 & \u20AC\uFFFD"},
        {"later value",
         "<groups><group index='1' id='5'><value>a</value></group><group index='1' id='5'><value>b"
         "</value></group></groups>",
         "b"},
        {"export", R"({"reports":[{"values":[]},{"values":[{"id":"5","index":1,"value":"v"}]}],"last":2})",
         "v"},
        {"UTF-16",
         std::string("\xFF\xFE") +
             [] {
                 std::string wide;
                 for (const char c : std::string(R"({"kel":1,"values":[{"id":5,"index":1,"value":"w"}]})"))
                     wide += {c, '\0'};
                 return wide;
             }(),
         "w"},
    };
    for (const auto& [name, bytes, expected] : rows) {
        const Snapshot snapshot = ReadSnapshot(bytes);
        ASSERT_EQ(snapshot.facts.size(), 1U) << name;
        EXPECT_NE(snapshot.Find(5, 1), nullptr) << name;
        EXPECT_EQ(snapshot.facts.front().text, expected) << name;
    }
}

TEST(ProgramFiles, OtherFilesAreRefusedInOneLine)
{
    const std::pair<std::string, const char*> rows[] = {
        {"", "neither"},
        {"PK\x03\x04", "neither"},
        {"{}", "neither"},
        {R"({"kel":2,"values":[]})", "newer"},
        {R"({"kel":1,"values":[{"id":5}]})", "damaged"},
        {R"({"kel":1,"values":[]}x)", "damaged"},
        {R"({"kel":1,"verdict":{},"values":[]})", "verdict"},
        {R"({"kel":1,"values":[{"id":5,"val)", "cut off at byte 32"},
        {R"({"kel":1e999})", "a number that is too large"},
        {R"({"reports":[]})", "no reports"},
        {std::string(R"({"kel":)") + std::string(100000, '['), "nested"},
        {"<groups><group", "not a report"},
        {"<groups>\u20AC", "not a report"},  // for which Wine's reader ends the process
        {"<groups><group id=\"5\"><value>7</value>", "not a report"},
        {"<groups><group id=\"5\"><value>7", "not a report"},  // of which Wine's reader finds no end
        {"<html/>", "not a report"},
        {"<!DOCTYPE groups [<!ENTITY a \"b\">]><groups>&a;</groups>", "not a report"},
    };
    for (const auto& [bytes, expected] : rows)
        EXPECT_THAT(Refusal([&file = bytes] { ReadSnapshot(file); }), HasSubstr(expected))
            << bytes.substr(0, 60);
    EXPECT_THAT(Refusal([] { ReadSnapshotFile("C:\\no such folder\\file"); }), HasSubstr("no such file"));
}

}  // namespace
}  // namespace kel::program
