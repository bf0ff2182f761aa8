#include <gmock/gmock.h>

#include "program/CommandLine.h"
#include "program/embedding/Clients.h"
#include "program/embedding/Lifetime.h"

namespace kel::program {

namespace {

using namespace std::chrono_literals;

const Lifetime::Time Start = Lifetime::Time() + 1h;

TEST(Embedding, IsAskedForAsComDoes)
{
    const std::pair<std::vector<std::string>, Command> cases[] = {
        {{"-Embedding"}, Command::Embedding},      {{"/embedding"}, Command::Embedding},
        {{"-REGSERVER"}, Command::RegisterServer}, {{"/UnregServer"}, Command::UnregisterServer},
        {{"host", "/Embedding"}, Command::Host},
    };
    for (const auto& [arguments, command] : cases)
        EXPECT_EQ(ReadCommandLine(arguments)->command, command) << arguments.back();
}

TEST(Embedding, EndsWhenNobodyNeedsIt)
{
    struct Look {
        const char* name;
        std::chrono::milliseconds after;
        bool isInUse, isAbandoned, isOver;
    };
    const std::vector<Look> courses[] = {
        {{"nobody asks", 29s, false, false, false}, {"for half a minute", 30s, false, false, true}},
        {{"used late", 29s, true, false, false},
         {"released", 40s, false, false, true},
         {"used long", 9h, true, false, false},
         {"just released", 9h + 900ms, false, false, false},
         {"used again", 9h + 1100ms, true, false, false},
         {"released again", 9h + 2s, false, false, false},
         {"a second later", 9h + 2100ms, false, false, true}},
        {{"used", 1s, true, false, false}, {"its clients have ended", 2s, true, true, true}},
    };
    for (const auto& course : courses) {
        Lifetime lifetime(Start);
        for (const Look& look : course)
            EXPECT_EQ(lifetime.IsOver(Start + look.after, look.isInUse, look.isAbandoned), look.isOver)
                << look.name;
    }
}

TEST(Embedding, KnowsWhetherItsClientsHaveEnded)
{
    Clients clients;
    EXPECT_FALSE(clients.AreGone(Start)) << "none is known";
    clients.Note(GetCurrentProcessId(), Start);
    EXPECT_FALSE(clients.AreGone(Start)) << "one lives";
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION started = {};
    wchar_t command[] = L"cmd.exe /c exit";
    ASSERT_TRUE(CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr,
                               &start, &started));
    const OwnedHandle process(started.hProcess), thread(started.hThread);
    Clients one;
    one.Note(started.dwProcessId, Start);
    one.Note(0, Start);
    EXPECT_FALSE(one.AreGone(Start + 1min)) << "suspended";
    TerminateProcess(process.get(), 0);
    WaitForSingleObject(process.get(), INFINITE);
    EXPECT_FALSE(one.AreGone(Start + 19s)) << "an unknown one may live";
    EXPECT_TRUE(one.AreGone(Start + 20s)) << "the known one has ended";
}

}  // namespace

}  // namespace kel::program
