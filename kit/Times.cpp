#include "kit/Times.h"

#include <windows.h>

#include <comutil.h>
#include <wininet.h>
#include <wrl/client.h>

#include <cstdio>
#include <cstdlib>

#include "Detection.h"
#include "detectors/Components.h"
#include "diag/Timer.h"
#include "kit/Process.h"
#include "kit/Responder.h"
#include "kit/Text.h"
#include "platform/Library.h"
#include "program/machine/Machine.h"
#include "service/Utf8.h"

namespace kel::kit {

namespace {

constexpr const char* Part = "Times";
constexpr unsigned MaxTimedSeconds = 300;

double SecondsSince(std::int64_t start)
{
    return static_cast<double>(Timer::ReadCounter() - start) / static_cast<double>(Timer::Frequency());
}

/// Leads the requests of this process to the responder.
void UseProxy(unsigned short port)
{
    const std::wstring proxy = L"http=127.0.0.1:" + std::to_wstring(port);
    INTERNET_PROXY_INFO info = {INTERNET_OPEN_TYPE_PROXY, proxy.c_str(), L""};
    InternetSetOptionW(nullptr, INTERNET_OPTION_PROXY, &info, sizeof(info));
}

/// Lines of a name, a tab and seconds, or a text.
void AddTimes(Rows& rows, const Ran& ran)
{
    for (const std::string& line : LinesOf(ran.output)) {
        const std::vector<std::string> fields = SplitFields(line, '\t');
        if (fields.size() == 2)
            rows.push_back({Part, fields[0], State::Ok, "", "", std::strtod(fields[1].c_str(), nullptr)});
    }
}

}  // namespace

Rows MeasureTimes(const std::wstring& program, const std::string& answers)
{
    Rows rows;
    {
        const Responder responder(answers, 0);
        const std::wstring port = std::to_wstring(responder.Port());
        std::wstring usual(256, L'\0');
        usual.resize(GetEnvironmentVariableW(L"http_proxy", usual.data(), 256));
        SetEnvironmentVariableW(L"http_proxy", (L"http://127.0.0.1:" + port).c_str());
        const Ran ran =
            RunProgram(Quoted(program) + L" --first-detect " + Quoted(L"%KIT%\\Detection.dll") + L" " + port,
                       MaxTimedSeconds);
        SetEnvironmentVariableW(L"http_proxy", usual.c_str());
        AddTimes(rows, ran);
        const bool hasVerdict = ran.output.find("<analysis result=\"pass\"") != std::string::npos;
        rows.push_back({"Steps", "the control gets a verdict from the responder",
                        hasVerdict ? State::Ok : State::Wrong, "a verdict that passes", ran.output,
                        ran.seconds});
    }
    const Ran ran = RunProgram(Quoted(program) + L" --detectors", MaxTimedSeconds);
    AddTimes(rows, ran);
    if (ran.code != 0)
        rows.push_back({Part, "detectors", State::Wrong, "0", std::to_string(ran.code), ran.seconds});
    return rows;
}

int PrintFirstDetect(const std::wstring& dll, unsigned short port)
{
    UseProxy(port);
    const OwnedLibrary library(LoadLibraryW(dll.c_str()));
    const auto getClassObject = FindFunction<decltype(DllGetClassObject)>(library.get(), "DllGetClassObject");
    if (getClassObject == nullptr)
        return 1;
    int code = 1;
    {
        Microsoft::WRL::ComPtr<IClassFactory> factory;
        Microsoft::WRL::ComPtr<ISysInfo> control;
        if (FAILED(getClassObject(CLSID_SysInfo, IID_PPV_ARGS(&factory))) ||
            FAILED(factory->CreateInstance(nullptr, IID_PPV_ARGS(&control))))
            return code;
        control->put_ReferrerID(_bstr_t(L"demo"));
        std::int64_t start = Timer::ReadCounter();
        control->Detect();
        std::printf("first Detect\t%.3f\n", SecondsSince(start));
        start = Timer::ReadCounter();
        _bstr_t verdict;
        control->get_Analysis(_bstr_t(L"requirements"), _bstr_t(L"xml"), _bstr_t(L"1.0"),
                              verdict.GetAddress());
        std::printf("Analysis after it\t%.3f\n", SecondsSince(start));
        std::printf("%s\n", verdict.length() != 0 ? ToUtf8(verdict.GetBSTR()).c_str() : "no verdict");
        code = 0;
    }
    return code;
}

int PrintDetectors()
{
    std::int64_t start = 0;
    std::string running;
    Components::SetListener([&](const char* detector) {
        if (!running.empty())
            std::printf("detector %s\t%.3f\n", running.c_str(), SecondsSince(start));
        running = detector != nullptr ? detector : "";
        start = Timer::ReadCounter();
    });
    program::ReadMachine(program::AllGroups());
    Components::SetListener({});
    return 0;
}

}  // namespace kel::kit
