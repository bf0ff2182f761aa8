// Measurements, each in a process of its own: only a first run shows what a page waits for.
#pragma once

#include <string>

#include "kit/Row.h"

namespace kel::kit {

/// Starts this program with each option below, and reads what it printed.
/// @param answers folder of the responder's answers
Rows MeasureTimes(const std::wstring& program, const std::string& answers);

/// "--first-detect DLL PORT": creates the control from the DLL without registration, lets it examine the
/// machine and ask the responder for a verdict. Prints the seconds of both and the verdict.
int PrintFirstDetect(const std::wstring& dll, unsigned short port);

/// "--detectors": prints the seconds of each detector.
int PrintDetectors();

}  // namespace kel::kit
