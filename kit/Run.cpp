#include "kit/Run.h"

#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <set>

#include "BuildSettings.h"
#include "kit/Comparisons.h"
#include "kit/Process.h"
#include "kit/Recording.h"
#include "kit/Removal.h"
#include "kit/Results.h"
#include "kit/Rights.h"
#include "kit/Steps.h"
#include "kit/Times.h"
#include "kit/UnitTests.h"
#include "program/files/File.h"
#include "program/files/ReadSnapshot.h"
#include "program/text/UserError.h"
#include "service/Utf8.h"

namespace kel::kit {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t MaxResultSize = std::size_t{64} << 20;
constexpr unsigned MaxReportSeconds = 300;
// They have the machine's identifier or other things that are not masked.
constexpr const wchar_t* MachineFile = L"machine.json";
constexpr const wchar_t* RightsFile = L"rights.json";

fs::path ThisProgram()
{
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

fs::path KitFolder()
{
    return ThisProgram().parent_path();
}

/// The package whose name ends so; empty for none.
std::wstring FindPackage(const wchar_t* ending)
{
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(KitFolder() / L"packages", ignored)) {
        if (entry.path().filename().wstring().ends_with(ending))
            return entry.path().wstring();
    }
    return {};
}

/// The variables of the steps' commands and of the tests.
void SetVariables(const fs::path& output)
{
    SetEnvironmentVariableW(L"KIT", KitFolder().c_str());
    SetEnvironmentVariableW(L"OUT", output.c_str());
    SetEnvironmentVariableW(L"MSI", FindPackage(L"-x64.msi").c_str());
    SetEnvironmentVariableW(L"USERMSI", FindPackage(L"-x64-user.msi").c_str());
    SetEnvironmentVariableW(L"KEL_TEST_FILES", (KitFolder() / L"files").c_str());
    // Refuses at once under Wine, whatever the machine's network does.
    SetEnvironmentVariableW(L"http_proxy", L"http://127.0.0.1:9");
}

std::set<std::string> ListAbilities(Tools& tools)
{
    std::set<std::string> has;
    if (!IsWine())
        has.insert("windows");
    if (!HasRights())
        has.insert("limited");
    if (tools.HasPowerShell())
        has.insert("powershell");
    if (!FindPackage(L"-x64.msi").empty())
        has.insert("msi");
    if (!FindPackage(L"-x64-user.msi").empty())
        has.insert("usermsi");
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetWindowsDirectoryW(folder.data(), MAX_PATH));
    if (fs::exists(fs::path(folder) / L"SysWOW64" / L"cscript.exe"))
        has.insert("wow64");
    return has;
}

template <typename Item>
std::vector<Item> Chosen(std::vector<Item> items, bool needsRights)
{
    std::erase_if(items, [&](const Item& item) { return item.needsRights != needsRights; });
    return items;
}

void Append(Rows& rows, Rows more)
{
    rows.insert(rows.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

/// The comparisons that need rights, or those that need none.
Rows CompareValues(const fs::path& output, const Snapshot& snapshot, bool needsRights)
{
    Tools tools(output.wstring());
    const std::string table = ToUtf8((KitFolder() / L"comparisons.tsv").wstring());
    return Compare(Chosen(ReadComparisons(table), needsRights), snapshot, tools);
}

/// The same, and the steps.
Rows RunTables(const fs::path& output, const Snapshot& snapshot, bool needsRights)
{
    Tools tools(output.wstring());
    Rows rows = CompareValues(output, snapshot, needsRights);
    const std::string folder = ToUtf8(KitFolder().wstring());
    Append(rows, RunSteps(Chosen(ReadSteps(folder + "\\steps.tsv"), needsRights), ListAbilities(tools)));
    return rows;
}

/// Writes the recording, and lets the unit tests play it: they have to store the same values.
Rows Record(const fs::path& output, const Snapshot& snapshot)
{
    const fs::path files = output / L"files";
    const fs::path machines = files / L"machines";
    fs::create_directories(machines);
    fs::copy_file(KitFolder() / L"files" / L"machines" / L"README.md", machines / L"README.md",
                  fs::copy_options::overwrite_existing);
    const std::string recording = RecordMachine(snapshot);
    program::WriteFile(ToUtf8((machines / L"recorded.txt").wstring()), recording);
    program::WriteFile(ToUtf8((output / L"recording.txt").wstring()), recording);
    SetEnvironmentVariableW(L"KEL_TEST_FILES", files.c_str());
    Rows rows = RunUnitTests(KitFolder().wstring(), L"Of/Machines.StoreTheExpectedValuesOnEveryRun/recorded");
    SetVariables(output);
    std::erase_if(rows, [](const Row& row) { return row.state == State::NotHere; });
    for (Row& row : rows) {
        row.part = "Recording";
        row.name = "played by the unit tests, this machine's recording gives its values";
    }
    fs::remove_all(files);
    return rows;
}

Snapshot ReadThisMachine(const fs::path& output)
{
    const fs::path file = output / MachineFile;
    const Ran ran =
        RunProgram(Quoted((KitFolder() / L"kel.exe").wstring()) + L" report " + Quoted(file.wstring()),
                   MaxReportSeconds);
    if (ran.code != 0)
        throw program::UserError("kel.exe gives no report: " + ran.output);
    return program::ReadSnapshotFile(ToUtf8(file.wstring()));
}

Rows RunRightsPart(const fs::path& output, bool asks)
{
    const auto none = [](const char* why) {
        return Rows{{"Steps", "what needs rights", State::NotHere, "", why}};
    };
    if (!HasRights()) {
        if (!asks)
            return none("not asked for");
        if (!RunAsAdministrator(ThisProgram().wstring(), L"--rights " + Quoted(output.wstring())))
            return none("refused by the user");
    } else {
        RunWithRights(output.wstring());
    }
    const fs::path file = output / RightsFile;
    if (!fs::exists(file))
        return {{"Steps", "what needs rights", State::Wrong, "its results", "it did not end"}};
    return ReadRows(program::ReadFile(ToUtf8(file.wstring()), MaxResultSize));
}

/// Everything, part by part.
void RunParts(const Options& options, const fs::path& output, const Snapshot& machine, Rows& rows)
{
    rows = RunTables(output, machine, false);
    std::puts("Measuring …");
    Append(rows, MeasureTimes(ThisProgram().wstring(), ToUtf8((KitFolder() / L"answers").wstring())));
    Append(rows, Record(output, machine));
    std::puts("Running the unit tests …");
    Append(rows, RunUnitTests(KitFolder().wstring(), options.tests));
    std::puts("Installing, using and removing …");
    Append(rows, RunRightsPart(output, options.asksForRights));
}

}  // namespace

void RunWithRights(const std::wstring& output)
{
    const fs::path folder(output);
    SetVariables(folder);
    Results results;
    results.rows =
        RunTables(folder, program::ReadSnapshotFile(ToUtf8((folder / MachineFile).wstring())), true);
    program::WriteFile(ToUtf8((folder / RightsFile).wstring()), WriteResults(results));
}

int RunKit(const Options& options)
{
    const fs::path output = fs::absolute(options.output);
    fs::create_directories(output);
    SetVariables(output);
    const Removal machineFile(output / MachineFile);
    const Removal rightsFile(output / RightsFile);
    std::puts("Reading this machine, and comparing it with the system's own tools …");
    const Snapshot machine = ReadThisMachine(output);
    Results results{KEL_VERSION_TEXT, machine.time, machine.windows, {}};
    if (options.facts.empty())
        RunParts(options, output, machine, results.rows);
    else
        results.rows = CompareValues(output, program::ReadSnapshotFile(ToUtf8(options.facts)), false);

    MaskResults(results, machine);
    program::WriteFile(ToUtf8((output / L"result.json").wstring()), WriteResults(results));
    program::WriteFile(ToUtf8((output / L"result.html").wstring()), WritePage(results));
    std::printf("%zu ok, %zu wrong, %zu not here: %s\n", results.Count(State::Ok),
                results.Count(State::Wrong), results.Count(State::NotHere),
                ToUtf8((output / L"result.html").wstring()).c_str());
    return static_cast<int>(results.Count(State::Wrong));
}

}  // namespace kel::kit
