#pragma once

namespace kel::program {

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
