// The twenty detectors, in the order in which they run. Each reads its sources in `Detect`; a further
// overload takes what a test puts in the place of the machine's own.
#pragma once

#include <span>

#include "detectors/Component.h"
#include "probes/Product.h"

namespace kel {

class CPUID;
struct OSFunctions;
struct SoftwareFunctions;

/// The processor: merges what `cpuid`, the registry, WMI and the operating system say. Measuring the clock
/// takes one second.
class CPU : public Component {
public:
    bool Detect() override;
    bool Detect(CPUID& chip);
};

/// The graphics adapters, merged from all graphics interfaces. It stores no values yet.
class GPU : public Component {
public:
    bool Detect() override;
};

/// The BIOS: version and date from the registry, name and manufacturer from WMI.
class Bios : public Component {
public:
    bool Detect() override;
};

/// CD-ROM drives. It stores no values yet.
class CDRom : public Component {
public:
    bool Detect() override;
};

/// The chassis: whether the machine has a long-term battery, that is, is portable.
class Chassis : public Component {
public:
    bool Detect() override;
};

/// The DirectX level. It stores no values yet.
class DirectX : public Component {
public:
    bool Detect() override;
};

/// DVD drives. It stores no values yet.
class DVD : public Component {
public:
    bool Detect() override;
};

/// The displays. It stores no values yet.
class Graphics : public Component {
public:
    bool Detect() override;
};

/// Hard drives. It stores no values yet.
class HardDrive : public Component {
public:
    HardDrive() { HardDrive::Initialize(); }

    bool Detect() override;
    void Initialize() override;
};

/// Logical drives. It stores no values yet.
class LogicalDrive : public Component {
public:
    LogicalDrive() { LogicalDrive::Initialize(); }

    bool Detect() override;
    void Initialize() override;
};

/// The motherboard: version from the registry, the rest from WMI.
class MotherBoard : public Component {
public:
    bool Detect() override;
};

/// The network: the download rate of the connection, measured only when the service wants it, since it costs
/// the visitor a download. Adapters store no values yet.
class NetworkDevice : public Component {
public:
    bool Detect() override;
};

/// The operating system: display name, release and edition flags, version numbers, locale, machine identifier
/// and .NET Framework. It reads only, but for the machine identifier.
class OS : public Component {
public:
    OS() { OS::Initialize(); }

    bool Detect() override;
    bool Detect(const OSFunctions& functions);
    void Initialize() override;

private:
    static void GetSupportInformation();
};

/// Memory: installed and available physical memory and the process's address space.
class Ram : public Component {
public:
    bool Detect() override;
};

/// Sound devices. It stores no values yet.
class Sound : public Component {
public:
    bool Detect() override;
};

/// The drivers of the devices that matter most, as their detectors found them, and the runtimes that programs
/// ask for. It runs after the graphics, network and sound detectors.
class Software : public Component {
public:
    bool Detect() override;
    bool Detect(const SoftwareFunctions& functions);
};

/// The browsers of a table, which of them the user chose, and the program that the control runs in.
class Browser : public Component {
public:
    Browser() { Browser::Initialize(); }

    bool Detect() override;
    bool Detect(const SoftwareFunctions& functions);
    /// Builds the table.
    void Initialize() override;

private:
    std::span<const Product> table;
};

/// Monitors. It stores no values yet.
class Monitor : public Component {
public:
    bool Detect() override;
};

/// The applications of a table: which are there, and their versions. It looks for no others.
class Applications : public Component {
public:
    Applications() { Applications::Initialize(); }

    bool Detect() override;
    bool Detect(const SoftwareFunctions& functions);
    /// Builds the table.
    void Initialize() override;

private:
    std::span<const Product> table;
};

/// SCSI and RAID controllers. It stores no values yet.
class SCSI : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
