#include <windows.h>

#include <array>
#include <cstdio>

#include "control/DetectionModule.h"
#include "program/Commands.h"
#include "program/text/Output.h"
#include "program/text/UserError.h"

namespace kel::program {

namespace {

int ShowRegistration(HRESULT result, const char* done)
{
    if (FAILED(result)) {
        std::array<char, 96> text = {};
        std::snprintf(text.data(), text.size(),
                      "The registration failed (0x%08lX). Try again as administrator.",
                      static_cast<unsigned long>(result));
        throw UserError(text.data());
    }
    Output::Standard().WriteLine(done);
    return 0;
}

}  // namespace

int RegisterServer()
{
    return ShowRegistration(CDetectionModule::Instance().RegisterScript(),
                            "Registered: 32-bit programs get the control from this program.");
}

int UnregisterServer()
{
    return ShowRegistration(CDetectionModule::Instance().UnregisterScript(),
                            "The registration of the local server is removed.");
}

}  // namespace kel::program
