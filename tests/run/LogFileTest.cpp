#include "run/LogFile.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "BuildSettings.h"
#include "run/LogStart.h"
#include "run/LogWriter.h"
#include "service/Utf8.h"
#include "support/LogCapture.h"
#include "support/ScratchKey.h"
#include "support/TestFolder.h"

namespace kel {
namespace {

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

TEST(LogFile, HasEveryLineOfSeveralWritersInAtMostFiveFiles)
{
    constexpr int Writers = 4, Lines = 30, MaxSize = 500, LineSize = 10;
    const test::TestFolder folder;
    const fs::path path = folder.Path() / L"a.log";
    std::vector<std::thread> writers;
    for (int writer = 1; writer <= Writers; ++writer) {
        writers.emplace_back([&, writer] {
            const LogFile file(path.wstring(), MaxSize);  // locks are by handle, so this is like a process
            for (int line = 0; line < Lines; ++line)
                EXPECT_TRUE(file.Append("line " + std::to_string(writer * 1000 + line) + "\n"));
        });
    }
    for (std::thread& writer : writers)
        writer.join();
    std::set<std::string> lines;
    for (const wchar_t* name : {L"a.log.2", L"a.log.1", L"a.log"}) {
        std::istringstream text(ReadAll(folder.Path() / name));
        for (std::string line; std::getline(text, line);)
            lines.insert(line);
        EXPECT_LE(text.str().size(), std::size_t{MaxSize}) << name;
    }
    EXPECT_EQ(lines.size(), std::size_t{Writers * Lines});
    EXPECT_EQ(lines.begin()->size() + 1, std::size_t{LineSize});
    for (int line = 0; line < 10; ++line)
        EXPECT_TRUE(LogFile(path.wstring(), MaxSize).Append(std::string(MaxSize - 1, 'x') + "\n"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()),
              LogFile::MaxFiles);
}

TEST(LogFile, LeavesLinksAndOtherThingsAlone)
{
    const test::TestFolder folder;
    const fs::path target = folder.Path() / L"target", link = folder.Path() / L"link";
    std::ofstream(target) << "kept";
    ASSERT_TRUE(CreateHardLinkW(link.c_str(), target.c_str(), nullptr));
    EXPECT_FALSE(LogFile(link.wstring(), 1000).Append("line\n"));
    EXPECT_EQ(ReadAll(target), "kept");
    EXPECT_FALSE(LogFile(folder.Path().wstring(), 1000).Append("line\n"));
}

TEST(LogWriter, NeverWaitsForAFileAndCountsWhatItLost)
{
    const test::TestFolder folder;
    const fs::path path = folder.Path() / L"later" / L"a.log";
    LogWriter& writer = *new LogWriter(LogFile(path.wstring(), 10'000'000), 3);
    ASSERT_TRUE(writer.Start());
    writer.Write(1, L"refused\n");
    writer.Flush();  // the folder is not there
    const ULONGLONG start = GetTickCount64();
    for (int line = 0; line < 1000; ++line) {
        writer.Write(1, std::wstring(1000, L'x'));
        writer.Flush();
    }
    EXPECT_LT(GetTickCount64() - start, 1000U * 50 / 2);  // each of them would wait 50 ms
    fs::create_directory(path.parent_path());
    const auto holds = [&](const char* part) { return ReadAll(path).find(part) != std::string::npos; };
    const char* const written = " a  b \xC3\xA4\r\n";
    for (int attempt = 0; attempt < 3000 && !(holds("lines that were lost: ") && holds(written)); ++attempt) {
        writer.Write(3, L"a\r\nb \u00E4\n");
        writer.Write(4, L"above the level\n");
        Sleep(100);
    }
    EXPECT_TRUE(holds("lines that were lost: "));
    EXPECT_TRUE(holds(written));
    EXPECT_FALSE(holds("above"));
}

TEST(LogWriter, ReportsASingleLostLine)
{
    const test::TestFolder folder;
    const fs::path path = folder.Path() / L"a.log";
    LogWriter& writer = *new LogWriter(LogFile(path.wstring(), 10'000'000), 3);
    for (int line = 0; line < 16; ++line)
        writer.Write(1, std::wstring(16384, L'x'));  // without its start, 16 of them would just fit
    ASSERT_TRUE(writer.Start());
    constexpr std::string_view Note = " lines that were lost: 1\r\n";
    std::string text;
    for (int attempt = 0; attempt < 3000 && !(text = ReadAll(path)).ends_with(Note); ++attempt)
        Sleep(10);
    EXPECT_EQ(std::ranges::count(text, '\n'), 16);
    EXPECT_EQ(text.find("..."), text.npos);
    writer.Write(1, std::wstring(16385, L'x'));
    for (int attempt = 0; attempt < 3000 && !ReadAll(path).ends_with("x...\r\n"); ++attempt)
        Sleep(10);
    EXPECT_TRUE(ReadAll(path).ends_with("x...\r\n"));
    EXPECT_TRUE(text.ends_with(Note)) << text.substr(0, 100);
}

TEST(LogStart, IgnoresALogFileWhosePathIsTooLong)
{
    const test::ScratchKey machine(HKEY_LOCAL_MACHINE);
    const std::wstring drive = L"C:\\";
    machine.Write(L"Software\\Policies\\Keldane", L"LogFile",
                  (drive + std::wstring(240 - drive.size(), L'a')).c_str());
    const test::LogCapture log(LogError);
    SetLogLevel(LogError);
    EXPECT_THAT(log.Lines(), testing::Contains(L"ERR The policy LogFile does not name a file that can be "
                                               L"written, and is ignored."));
}

TEST(LogStart, WritesTheDayTheProgramsAndTheServiceToThePolicysFile)
{
    const test::TestFolder folder;
    SetEnvironmentVariableW(L"KEL_LOG_NAME", L"named");
    const test::ScratchKey machine(HKEY_LOCAL_MACHINE);
    const wchar_t* const policies = L"Software\\Policies\\Keldane";
    machine.Write(policies, L"LogFile", (folder.Path() / L"%KEL_LOG_NAME%.log").c_str());
    machine.Write(policies, L"ServiceHost", L"a b\u20ac");
    wchar_t program[1000] = {};
    GetModuleFileNameW(nullptr, program, std::size(program));
    const auto today = [] {
        SYSTEMTIME now;
        GetLocalTime(&now);
        char day[20] = {};
        snprintf(day, std::size(day), "%04d-%02d-%02d", now.wYear, now.wMonth, now.wDay);
        return std::string(day);
    };
    const std::string process = std::to_string(GetCurrentProcessId());
    const auto firstLine = [&](const std::string& day) {
        return "TRACE | " + day + ", process " + process + ToUtf8(std::wstring(L" ") + program) +
               ", version " KEL_VERSION_TEXT " " + ToUtf8(program) + "\r\n";
    };
    const std::string before = today();
    StartLogFile();
    WriteLog(LogMark, L"of a lower level");
    WriteLog(LogError, L"of the file's level");
    FlushLogFile();
    const std::string after = today();  // the next day at midnight
    const std::string text = ReadAll(folder.Path() / L"named.log");
    EXPECT_THAT(text,
                testing::AnyOf(testing::HasSubstr(firstLine(before)), testing::HasSubstr(firstLine(after))));
    const std::regex line("(" + before + "|" + after + ") " + process +
                          " \\d\\d:\\d\\d:\\d\\d  [\\d.]{6}  ERR   \\| of the file's level\r\n");
    EXPECT_TRUE(std::regex_search(text, line)) << text;
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("of a lower level")));
    EXPECT_THAT(text, testing::HasSubstr("TRACE | service "));
    EXPECT_THAT(text, testing::HasSubstr("The policy ServiceHost is not the name of a host, and is ignored: "
                                         "\"a b?\""));
}

}  // namespace
}  // namespace kel
