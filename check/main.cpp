#include <windows.h>

#include <objbase.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

#include "check/Dialog.h"
#include "check/MainWindow.h"
#include "check/SaveFile.h"
#include "check/Work.h"
#include "check/text/ConsentPage.h"
#include "check/text/ProblemPage.h"
#include "check/text/VerdictPage.h"
#include "detectors/Components.h"
#include "program/machine/Progress.h"
#include "program/machine/ServiceCheck.h"
#include "run/LogStart.h"
#include "service/ServiceHost.h"
#include "service/Utf8.h"
#include "verdict/Rendering.h"

namespace {

using namespace kel;
using namespace kel::check;
using program::CheckOffer, program::VerdictAnswer;

/// The exit codes; the first three are those of kel.exe.
enum ExitCode { Passed, Failed, Unknown, Problem, Cancelled };
enum ButtonId { CheckButton = 100, SaveButton, ListButton };

std::string Service()
{
    return ToUtf8(ServiceHost());
}

/// Ends the process without a wait for its other threads or for a window to close: no exchange goes on, and
/// neither a driver nor an answer holds the program up.
void End(ExitCode code)
{
    FlushLogFile();
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
}

void Cancel()
{
    End(Cancelled);
}

ExitCode ShowProblem(const Page& page)
{
    Dialog dialog(page);
    dialog.AddCloseButton();
    dialog.Show();
    return Problem;
}

/// Shows a page with a bar until the work has a result.
template <typename Result>
Result WaitFor(std::future<Result> result, const Page& page, int end, const std::function<Step()>& step)
{
    Dialog dialog(page);
    dialog.AddCancelButton(&Cancel);
    dialog.AddBar(end, [&]() -> std::optional<Step> {
        if (IsReady(result))
            return std::nullopt;
        return step();
    });
    dialog.Show();
    return result.get();
}

CheckOffer AskForOffer(const CheckName& name)
{
    program::BeginCheck(name.product, name.session);
    const Page page = WaitingPage(Service());
    return WaitFor(StartWork(&program::FetchOffer), page, 0, [&] { return Step{page.content}; });
}

/// Shows what will be read and sent, until the user agrees.
void AskForConsent(const CheckName& name, const std::string& title)
{
    const std::vector<int> values = program::ListReportedValues();
    Dialog dialog(ConsentPage(name, title, Service(), values));
    dialog.AddButton(CheckButton, L"C&heck");
    if (IsShortened(values))
        dialog.AddButton(ListButton, L"&All values\u2026", [&](HWND window) {
            SaveFile(window, PlainText, name.product + " values", ListValues(values, values.size()) + "\n");
        });
    dialog.AddCancelButton(&Cancel);
    dialog.Show();
}

VerdictAnswer CheckMachine()
{
    static std::atomic<const char*> detector = nullptr;
    static std::atomic<int> started = 0;
    Components::SetListener([](const char* name) {
        detector = name;
        ++started;
    });
    const int end = static_cast<int>(Components::ListFacts().size()) + 1;
    return WaitFor(StartWork(&program::FetchVerdict), ProgressPage(), end, [] {
        const char* const current = detector;
        const int position = started;
        if (position == 0)
            return Step{ProgressPage().content};
        return Step{ProgressText(current != nullptr ? program::AreaOfDetector(current) : ""), position};
    });
}

ExitCode ShowVerdict(const CheckName& name, const Verdict& verdict)
{
    Dialog dialog(VerdictPage(verdict));
    dialog.AddButton(SaveButton, L"&Save\u2026",
                     [&](HWND window) { SaveFile(window, WebPage, name.product, RenderPage(verdict)); });
    dialog.AddCloseButton();
    dialog.SetDefaultButton(IDCLOSE);
    dialog.Show();
    return verdict.total == Result::Pass ? Passed : verdict.total == Result::Fail ? Failed : Unknown;
}

ExitCode Check(const CheckName& name)
{
    const CheckOffer offer = AskForOffer(name);
    if (!program::IsGroupList(offer.wanted))
        return ShowProblem(RefusedPage(offer.wanted, name, Service()));
    AskForConsent(name, offer.title);
    const VerdictAnswer answer = CheckMachine();
    if (!answer.verdict)
        return ShowProblem(RefusedPage(answer, name, Service()));
    return ShowVerdict(name, *answer.verdict);
}

/// The name of the program's file, without its folder.
std::string OwnFileName()
{
    constexpr DWORD MaxPath = 32768;
    std::wstring path(MaxPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MaxPath));
    return ToUtf8(path.substr(path.find_last_of(L"\\/") + 1));
}

ExitCode Run()
{
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))  // for the system's dialog for files
        return Problem;
    const MainWindow window;
    try {
        // Only a page's link comes as an argument: it never falls back to the file's name.
        if (__argc > 1) {
            const auto name = __argc == 2 ? ParseLink(ToUtf8(__wargv[1])) : std::nullopt;
            return name ? Check(*name) : ShowProblem(WrongLinkPage());
        }
        const auto name = ParseFileName(OwnFileName());
        return name ? Check(*name) : ShowProblem(WrongFileNamePage());
    } catch (const std::exception& error) {
        return ShowProblem(FailurePage(error.what()));
    }
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int)
{
    ExitCode code = Problem;
    try {
        code = Run();
    } catch (...) {
        // Nothing can be shown.
    }
    End(code);
    return code;
}
