#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <tuple>
#include <vector>

#include "program/CommandLine.h"
#include "program/host/Caller.h"
#include "program/host/Conversation.h"
#include "program/host/Frames.h"
#include "support/HostInput.h"

namespace kel::program {
namespace {

using test::FakeSteps, test::ReadAll;

#define SESSION "01234567-89ab-cdef-0123-456789abcdef"
#define ASK R"({"type": "ask", "product": "demo", "session": ")" SESSION "\"}"
#define CHECK R"({"type": "check"})"

TEST(Host, DividesItsInputIntoFramesOfBoundedSize)
{
    const std::string longest(MaxFrame, 'x'), tooLong(MaxFrame + 1, 'x');
    const std::tuple<const char*, std::string, std::vector<std::string>> rows[] = {
        {"nothing", "", {}},
        {"two", MakeFrame("{}") + MakeFrame(""), {"{}", ""}},
        {"longest", MakeFrame(longest), {longest}},
        {"cut within a length", MakeFrame("{}") + "\x02", {"{}"}},
        {"cut within a content", MakeFrame("{}") + MakeFrame("{}").substr(0, 5), {"{}"}},
        {"too long", MakeFrame(tooLong) + MakeFrame("{}"), {"FrameError"}},
        {"length of all bits", "\xFF\xFF\xFF\xFF", {"FrameError"}},
    };
    for (const auto& [name, input, expected] : rows) {
        EXPECT_EQ(ReadAll(input, 4096), expected) << name;
        EXPECT_EQ(ReadAll(input, 1), expected) << name << " in pieces";
    }
}

TEST(Host, AnswersAnExtensionInTheOrderOfACheck)
{
    const char* const wrong = R"({"type":"error","reason":"message"})";
    const char* const order = R"({"type":"error","reason":"order"})";
    const char* const values = R"({"type":"values","service":"analysis.keldane.example","encrypted":false,)"
                               R"("areas":[{"area":"memory","names":["total physical memory"]}]})";
    const char* const verdict =
        R"({"type":"verdict","verdict":{"product":"demo","session":")" SESSION
        R"(","result":"fail","title":"T","requirements":[{"result":"fail","label":"M","needed":"at least 2 GB",)"
        R"("needed text":"2 GB","advice":"Buy.","recommended":true}]}})";
    const auto unknown = [](FakeSteps& steps) { steps.wanted = {"", "unknown product"}; };
    const auto cut = [](FakeSteps& steps) { steps.verdict = {{"{", "cut"}, {}}; };
    const auto large = [](FakeSteps& steps) {
        steps.verdict.verdict->lines[0].advice.assign(MaxAnswer, 'x');
    };
    const auto usual = [](FakeSteps&) {};
    using Messages = std::vector<std::string>;
    const std::tuple<const char*, std::function<void(FakeSteps&)>, Messages, std::string> rows[] = {
        {"values", usual, {ASK}, values},
        {"verdict without what was found", usual, {ASK, CHECK}, verdict},
        {"verdict first", usual, {CHECK}, order},
        {"second question", usual, {ASK, ASK}, order},
        {"second check", usual, {ASK, CHECK, CHECK}, order},
        {"unknown product",
         unknown,
         {ASK},
         R"({"type":"error","reason":"service","state":"unknown product"})"},
        {"check of an unknown product", unknown, {ASK, CHECK}, order},
        {"no verdict", cut, {ASK, CHECK}, R"({"type":"error","reason":"service","state":"cut"})"},
        {"large verdict", large, {ASK, CHECK}, R"({"type":"error","reason":"length"})"},
        {"empty", usual, {""}, wrong},
        {"unknown type", usual, {R"({"type": "values"})"}, wrong},
        {"further member", usual, {R"({"type": "check", "a": "b"})"}, wrong},
        {"repeated member", usual, {R"({"type": "check", "type": "check"})"}, wrong},
        {"number", usual, {R"({"type": 1})"}, wrong},
        {"list", usual, {R"([{"type": "check"}])"}, wrong},
        {"object within", usual, {R"({"type": {"type": "check"}})"}, wrong},
        {"deep", usual, {std::string(MaxFrame, '[')}, wrong},
        {"two objects", usual, {CHECK CHECK}, wrong},
        {"not UTF-8", usual, {"{\"type\": \"\xFF\"}"}, wrong},
        {"product", usual, {R"({"type": "ask", "product": "../x", "session": ")" SESSION "\"}"}, wrong},
        {"session", usual, {R"({"type": "ask", "product": "demo", "session": "1"})"}, wrong},
    };
    for (const auto& [name, change, messages, expected] : rows) {
        FakeSteps steps;
        change(steps);
        Conversation conversation = steps.Start();
        std::string answer;
        for (const std::string& message : messages)
            answer = conversation.Answer(message);
        EXPECT_EQ(answer, expected) << name;
    }
}

TEST(Host, AnswersOnlyTheExtensionsOfTheBuild)
{
    const std::string own = "chrome-extension://ehgkniafokoimimooppfhjkmahheheej/";
    const std::string manifest = "C:\\P\\mozilla.json";
    const std::tuple<std::vector<std::string>, bool, bool> rows[] = {
        // arguments, whether a browser has started the program, whether it answers
        {{own}, true, true},
        {{own, "--parent-window=0"}, true, true},
        {{manifest, "check@keldane.example"}, true, true},
        {{"host", own}, false, true},
        {{"host", manifest, "other@keldane.example"}, false, false},
        {{"host", "chrome-extension://ehgkniafokoimimooppfhjkmahheheei/"}, false, false},
        {{"host", "https://ehgkniafokoimimooppfhjkmahheheej/"}, false, false},
        {{"host", "chrome-extension:///"}, false, false},
        {{"host", "chrome-extension://"}, false, false},
        {{"host", "chrome-extension://ehgkniafokoimimooppfhjkmahheheej;check@keldane.example/"},
         false,
         false},
        {{"host", own, own}, false, false},
        {{"host"}, false, false},
    };
    for (const auto& [arguments, isStarted, isAllowed] : rows) {
        const auto shown = testing::PrintToString(arguments);
        EXPECT_EQ(IsStartedByBrowser(arguments), isStarted) << shown;
        const auto options = ReadCommandLine(arguments);
        EXPECT_EQ(options->command, Command::Host) << shown;
        EXPECT_EQ(IsAllowedCaller(options->callers), isAllowed) << shown;
    }
}

}  // namespace
}  // namespace kel::program
