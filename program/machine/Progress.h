#pragma once

#include <string>

namespace kel::program {

/// The part of the machine that a detector examines: "processor" for "CPU".
std::string AreaOfDetector(const std::string& detector);

/// Shows on standard error what of the machine is being read, as long as it exists: only where that is a
/// console, since progress in a file is noise.
class Progress {
public:
    Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();
};

}  // namespace kel::program
