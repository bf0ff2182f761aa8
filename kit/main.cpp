// verify.exe: tries the product on this machine. Options:
//   --output FOLDER   where the results go; "result" beside the program if it is missing
//   --tests FILTER    which unit tests run, as their programs take it
//   --facts FILE      only compares the values of this file of `kel report`
//   --no-rights       leaves out what needs an administrator's rights
// The others are for the processes that it starts itself. Ends with 0 when nothing is wrong, else 1; 2 when
// it cannot run.
#include <windows.h>

#include <objbase.h>

#include <cstdio>
#include <cwchar>
#include <exception>
#include <string>
#include <vector>

#include "kit/Run.h"
#include "kit/Times.h"
#include "program/text/UserError.h"

namespace {

using namespace kel::kit;

int RunWith(const std::vector<std::wstring>& arguments)
{
    if (arguments.size() == 3 && arguments[0] == L"--first-detect")
        return PrintFirstDetect(arguments[1],
                                static_cast<unsigned short>(std::wcstoul(arguments[2].c_str(), nullptr, 10)));
    if (arguments.size() == 1 && arguments[0] == L"--detectors")
        return PrintDetectors();
    if (arguments.size() == 2 && arguments[0] == L"--rights") {
        RunWithRights(arguments[1]);
        return 0;
    }
    Options options;
    options.output = L"result";
    for (std::size_t place = 0; place < arguments.size(); ++place) {
        std::wstring* const text = arguments[place] == L"--output"  ? &options.output
                                   : arguments[place] == L"--tests" ? &options.tests
                                   : arguments[place] == L"--facts" ? &options.facts
                                                                    : nullptr;
        if (arguments[place] == L"--no-rights")
            options.asksForRights = false;
        else if (text != nullptr && place + 1 < arguments.size())
            *text = arguments[++place];
        else
            throw kel::program::UserError(
                "Usage: verify [--output FOLDER] [--tests FILTER] [--facts FILE] [--no-rights]");
    }
    return RunKit(options) > 0 ? 1 : 0;
}

}  // namespace

int wmain(int count, wchar_t** arguments)
{
    try {
        SetConsoleOutputCP(CP_UTF8);
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);  // for WMI; ends with the process
        const int code = RunWith({arguments + 1, arguments + count});
        std::fflush(stdout);
        return code;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "verify: %s\n", error.what());
        return 2;
    }
}
