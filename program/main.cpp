#include <windows.h>

#include <objbase.h>

#include <exception>
#include <string>
#include <vector>

#include "program/Commands.h"
#include "program/text/Characters.h"
#include "program/text/Output.h"
#include "program/text/UserError.h"
#include "run/LogStart.h"
#include "service/Utf8.h"

namespace {

using namespace kel::program;

int Run(const Options& options)
{
    switch (options.command) {
        case Command::Check:
            return CheckMachine(options);
        case Command::Report:
            return WriteReport(options);
        case Command::Explain:
            return ExplainFile(options);
        case Command::Compare:
            return CompareFiles(options);
        case Command::Host:
            return ServeBrowser(options);
        case Command::Embedding:
            return ServeHosts();
        case Command::RegisterServer:
            return RegisterServer();
        case Command::UnregisterServer:
            return UnregisterServer();
        default:
            return ShowFacts(options);
    }
}

int Fail(const std::string& reason) noexcept
{
    kel::FlushLogFile();
    try {
        Output::Error().WriteLine("kel: " + kel::Printable(reason), Colour::Bad);
        Output::Error().Flush();
    } catch (...) {
        // There is nobody to read it; the exit code remains.
    }
    return WrongUse;
}

}  // namespace

int wmain(int count, wchar_t** arguments)
{
    try {
        std::vector<std::string> texts;
        for (int i = 1; i < count; ++i)
            texts.push_back(kel::ToUtf8(arguments[i]));
        int code = 0;
        if (const auto options = ReadCommandLine(std::move(texts))) {
            // The detectors' sources are COM servers. Nobody leaves the apartment: the process ends.
            const HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
            if (FAILED(result))
                return Fail("COM does not work on this machine. Restart Windows and try again.");
            code = Run(*options);
        }
        Output::Standard().Flush();
        kel::FlushLogFile();
        return code;
    } catch (const UserError& error) {
        return Fail(error.what());
    } catch (const std::exception& error) {
        return Fail(std::string("An error of the program: ") + error.what() + ". Please report it.");
    }
}
