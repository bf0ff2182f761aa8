// Measures the built control through COM. Prints one figure per line; the driver runs it many times. Its
// first argument says what is measured; main() lists the choices.
#include <windows.h>

#include <comutil.h>
#include <tlhelp32.h>

#include <cstdlib>
#include <optional>
#include <utility>

#include "LineClock.h"
#include "Measure.h"
#include "client/ControlDll.h"
#include "client/Hosts.h"
#include "platform/Handles.h"

namespace kel::bench {
namespace {

using Microsoft::WRL::ComPtr;
using Control = ComPtr<ISysInfo>;

constexpr int Repetitions = 200;
constexpr std::size_t LongText = 1000000;

void SetLevel(const Control& control, const wchar_t* level)
{
    control->put_Logging(_bstr_t(level));
}

void ReadReport(const Control& control)
{
    _bstr_t report;
    control->get_SysInfo(report.GetAddress());
}

Control Created(const test::ControlDll& dll)
{
    Control control = dll.Create();
    control->put_ReferrerID(_bstr_t(L"bench"));
    return control;
}

/// The cost of a line of debugger output: of a process's first one, which opens the debugger's mutex, and of
/// each later one.
void PrintOutputCost(const char* name, int repetitions)
{
    Print(name, TimedEach(repetitions, [] {
              OutputDebugStringW(L"12:00:00  0.0160  TRACE | . . Adding value: a text to 71060\n");
          }));
}

/// Load, create, first property, and the first Detect with the time of each of its lines.
void First()
{
    std::optional<test::ControlDll> dll;
    Control control;
    _bstr_t session;
    Print("load", Timed([&] { dll.emplace(); }));
    Print("create", Timed([&] { control = dll->Create(); }));
    Print("property", Timed([&] { control->get_SessionID(session.GetAddress()); }));
    control->put_ReferrerID(_bstr_t(L"bench"));

    const LineClock clock;
    const double start = Milliseconds();
    control->Detect();
    Print("detect", Milliseconds() - start);
    for (const LineClock::Line& line : clock.Lines())
        std::printf("line %.6f %s\n", line.milliseconds - start, line.text.c_str());
    PrintOutputCost("output.each", Repetitions);
}

/// The first report, with the log off.
void Quiet()
{
    const test::ControlDll dll;
    const Control control = Created(dll);
    Print("report", Timed([&] { ReadReport(control); }));
}

/// Reads after the first.
void Again()
{
    const test::ControlDll dll;
    const Control control = Created(dll);
    ReadReport(control);
    const auto print = [&](const char* name, const wchar_t* level, auto body) {
        SetLevel(control, level);
        Print(name, TimedEach(Repetitions, body));
    };
    print("sysinfo.quiet", L"0", [&] { ReadReport(control); });
    print("detect.again", L"0", [&] { control->Detect(); });
    print("value", L"0", [&] {
        _bstr_t value;
        control->get_Value(_bstr_t(L"71063"), value.GetAddress());
    });
    print("sysinfo.loud", L"7", [&] { ReadReport(control); });

    // Each character of this text is logged twice.
    SetLevel(control, L"7");
    const _bstr_t longText(std::wstring(LongText, L'x').c_str());
    control->Configure(longText);
    control->Configure(longText);
    print("sysinfo.long", L"0", [&] { ReadReport(control); });
}

/// One Configure, and the same again, which replaces each value.
void Configure(int groups, const std::string& level)
{
    const test::ControlDll dll;
    const Control control = Created(dll);
    std::wstring text = L"<groups>";
    for (int i = 1; i <= groups; ++i)
        text += L"<group id=\"" + std::to_wstring(i) + L"\"><value>text " + std::to_wstring(i) +
                L"</value></group>";
    const _bstr_t configuration((text + L"</groups>").c_str());
    SetLevel(control, std::wstring(level.begin(), level.end()).c_str());
    Print("first", Timed([&] { control->Configure(configuration); }));
    Print("again", Timed([&] { control->Configure(configuration); }));
}

/// Handles and threads of this process.
std::pair<DWORD, int> Holdings()
{
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    const OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    int threads = 0;
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof(thread);
    for (BOOL isThere = Thread32First(snapshot.get(), &thread); isThere;
         isThere = Thread32Next(snapshot.get(), &thread))
        threads += thread.th32OwnerProcessID == GetCurrentProcessId();
    return {handles, threads};
}

/// The handles and threads that many controls leave in a process with the graphics libraries, which the first
/// report loads.
void Life()
{
    const test::ControlDll dll;
    const auto live = [&dll](int count) {
        for (int made = 0; made < count; ++made) {
            const Control control = dll.Create();
            control->put_ReferrerID(_bstr_t(L"graphics"));
            ReadReport(control);
        }
    };
    live(1000);
    const auto [handles, threads] = Holdings();
    int libraries = 0;
    for (const wchar_t* name : {L"dxgi", L"d3d9", L"d3d11", L"d3d12", L"dxdiagn"})
        libraries += GetModuleHandleW(name) != nullptr;
    Print("libraries", libraries);
    Print("each", Timed([&] { live(10000); }) / 10000);
    const auto [handlesAfter, threadsAfter] = Holdings();
    Print("handles", static_cast<double>(handlesAfter) - handles);
    Print("threads", threadsAfter - threads);
}

}  // namespace
}  // namespace kel::bench

int main(int count, char** arguments)
{
    using namespace kel::bench;
    const std::string what = count > 1 ? arguments[1] : "";
    const kel::test::Apartment apartment;
    if (what == "first")
        First();
    else if (what == "quiet")
        Quiet();
    else if (what == "again")
        Again();
    else if (what == "life")
        Life();
    else if (what == "output")
        PrintOutputCost("output.first", 1);
    else if (what == "configure" && count > 3)
        Configure(std::atoi(arguments[2]), arguments[3]);
    else
        return EXIT_FAILURE;
    return EXIT_SUCCESS;
}
