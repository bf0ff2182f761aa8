#include "kit/Tools.h"

#include <windows.h>

#include <filesystem>

#include "kit/Process.h"
#include "kit/Removal.h"
#include "kit/Text.h"
#include "kit/WmiAnswers.h"
#include "program/files/File.h"
#include "program/text/UserError.h"
#include "service/Utf8.h"
#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel::kit {

namespace {

constexpr unsigned MaxToolSeconds = 300;
constexpr std::size_t MaxFileSize = std::size_t{32} << 20;
constexpr const wchar_t* PowerShell = L"powershell -NoProfile -NonInteractive -ExecutionPolicy Bypass ";

/// The tools that write a file, and how they are run with its path.
const std::map<std::string, std::pair<const wchar_t*, const wchar_t*>> FileTools = {
    {"dxdiag", {L"dxdiag.xml", L"dxdiag /whql:off /x "}},
    {"powercfg", {L"battery.xml", L"powercfg /batteryreport /xml /output "}}};

/// UTF-8 of a file in either form of Unicode.
std::string Decoded(std::string bytes)
{
    if (bytes.starts_with("\xFF\xFE"))
        return FromUtf16(std::string_view(bytes).substr(2));
    return bytes;
}

}  // namespace

std::vector<std::string> ElementsOf(const std::string& xml, const std::string& name)
{
    std::vector<std::string> texts;
    const std::string opening = "<" + name + ">";
    const std::string closing = "</" + name + ">";
    for (std::size_t place = xml.find(opening); place != std::string::npos;) {
        const std::size_t start = place + opening.size();
        const std::size_t end = xml.find(closing, start);
        if (end == std::string::npos)
            break;
        texts.emplace_back(Trim(std::string_view(xml).substr(start, end - start)));
        place = xml.find(opening, end);
    }
    return texts;
}

std::vector<std::string> CsvCells(const std::string& line)
{
    std::vector<std::string> cells(1);
    bool isQuoted = false;
    for (const char c : line) {
        if (c == '"')
            isQuoted = !isQuoted;
        else if (c == ',' && !isQuoted)
            cells.emplace_back();
        else
            cells.back() += c;
    }
    return cells;
}

bool Tools::HasPowerShell()
{
    if (!hasPowerShell)
        hasPowerShell = RunProgram(std::wstring(PowerShell) + L"-Command \"'is ' + 'here'\"", MaxToolSeconds)
                            .output.find("is here") != std::string::npos;
    return *hasPowerShell;
}

void Tools::RunPowerShell(const std::vector<std::string>& expressions)
{
    if (expressions.empty() || !HasPowerShell())
        return;
    std::string script =
        "\xEF\xBB\xBF[Console]::OutputEncoding = [Text.Encoding]::UTF8\n$ErrorActionPreference = 'Stop'\n";
    for (std::size_t number = 0; number < expressions.size(); ++number) {
        const std::string mark = std::to_string(number);
        script += "try { foreach ($v in @(" + expressions[number] + ")) { '" + mark +
                  "=' + $v } } catch { '" + mark + "!' + $_.Exception.Message }\n";
    }
    const std::wstring path = folder + L"\\compare.ps1";
    program::WriteFile(ToUtf8(path), script);
    const Ran ran = RunProgram(PowerShell + (L"-File " + Quoted(path)), MaxToolSeconds);
    std::filesystem::remove(path);
    for (const std::string& line : LinesOf(ran.output)) {
        const std::size_t end = line.find_first_of("=!");
        const std::size_t number = end == std::string::npos ? 0 : std::strtoul(line.c_str(), nullptr, 10);
        if (end == 0 || end == std::string::npos || number >= expressions.size())
            continue;
        Answer& answer = scripted[expressions[number]];
        const std::string text(Trim(std::string_view(line).substr(end + 1)));
        if (line[end] == '!')
            answer.problem = text;
        else
            answer.texts.push_back(text);
    }
}

const std::string& Tools::FileOf(const std::string& tool)
{
    const auto found = files.find(tool);
    if (found != files.end())
        return found->second;
    std::string& content = files[tool];
    const auto& [name, command] = FileTools.at(tool);
    const std::wstring path = folder + L"\\" + name;
    const Removal removal(path);  // it names the machine
    RunProgram(command + Quoted(path), MaxToolSeconds);
    if (std::filesystem::exists(path))
        content = Decoded(program::ReadFile(ToUtf8(path), MaxFileSize));
    return content;
}

/// Its second line has the values; the names in the first are translated.
Answer Tools::AskSystemInfo(const std::string& column)
{
    const auto found = files.find("systeminfo");
    if (found == files.end())
        files["systeminfo"] = RunProgram(L"systeminfo /fo csv", MaxToolSeconds).output;
    const std::vector<std::string> lines = LinesOf(files["systeminfo"]);
    const std::vector<std::string> cells = lines.size() > 1 ? CsvCells(lines[1]) : std::vector<std::string>();
    const std::size_t number = std::stoul(column);
    if (number >= cells.size())
        return {{}, "systeminfo says nothing"};
    return {{cells[number]}, ""};
}

Answer Tools::Ask(const std::string& tool, const std::string& expression)
{
    if (tool == "wmi")
        return AskWmi(expression);
    if (tool == "systeminfo")
        return AskSystemInfo(expression);
    if (tool == "powershell") {
        const auto found = scripted.find(expression);
        return found != scripted.end() ? found->second
                                       : Answer{{}, HasPowerShell() ? "no answer" : "there is no PowerShell"};
    }
    if (!FileTools.contains(tool))
        throw program::UserError("There is no tool \"" + tool + "\".");
    const std::string& content = FileOf(tool);
    return content.empty() ? Answer{{}, tool + " writes no file"}
                           : Answer{ElementsOf(content, expression), ""};
}

}  // namespace kel::kit
