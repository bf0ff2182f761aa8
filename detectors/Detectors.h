// The twenty detectors, in the order in which they run. Each reads its sources in `Detect`; a further
// overload takes what a test puts in the place of the machine's own.
#pragma once

#include <windows.h>

#include <span>

#include "detectors/Component.h"
#include "probes/Product.h"

namespace kel {

class Adapters;
class CPUID;
class DisplayConfig;
struct NetworkFunctions;
struct OSFunctions;
class SetupLib;
struct SoftwareFunctions;
struct SoundFunctions;
struct StorageFunctions;
struct VolumeFunctions;

/// The processor: merges what `cpuid`, the registry, WMI and the operating system say. Measuring the clock
/// takes one second.
class CPU : public Component {
public:
    bool Detect() override;
    bool Detect(CPUID& chip);
};

/// The graphics adapters, merged from the graphics interfaces, the Setup API and the registry; the first is
/// the one that a program would use. Direct3D and DxDiag, which load a driver, are asked only for facts that
/// the service wants.
class GPU : public Component {
public:
    bool Detect() override;
    bool Detect(Adapters& adapters);
};

/// The BIOS: version and date from the registry, name and manufacturer from WMI.
class Bios : public Component {
public:
    bool Detect() override;
};

/// Optical drives: name, letter, whether one writes CDs or shows an image. Merged from the Setup API, WMI and
/// what the drives answer; no medium is touched.
class CDRom : public Component {
public:
    bool Detect() override;
    bool Detect(const StorageFunctions& functions);
};

/// The chassis: whether the machine has a long-term battery, that is, is portable.
class Chassis : public Component {
public:
    bool Detect() override;
    bool Detect(BOOLEAN(WINAPI* getCapabilities)(SYSTEM_POWER_CAPABILITIES*));
};

/// DirectX: the runtime that Windows has, which versions of Direct3D are there, and what the first adapter
/// and its driver can do.
class DirectX : public Component {
public:
    bool Detect() override;
    bool Detect(Adapters& adapters);
};

/// What the optical drives can do with DVDs and Blu-ray discs. The drives are those of CDRom.
class DVD : public Component {
public:
    bool Detect() override;
    bool Detect(const StorageFunctions& functions);
};

/// The displays: how many are active, the primary one's picture, and the whole desktop.
class Graphics : public Component {
public:
    bool Detect() override;
    bool Detect(const DisplayConfig& config);
};

/// Disks, with those that hold Windows first: merged from what each answers, WMI and the Setup API by the
/// disk's number. None is waked, read or asked for its serial number.
class HardDrive : public Component {
public:
    HardDrive() { HardDrive::Initialize(); }

    bool Detect() override;
    bool Detect(const StorageFunctions& functions);
    void Initialize() override;
};

/// Drive letters, with that of Windows first. Only fixed and RAM disks are asked for file system and sizes;
/// labels and shares are never asked for.
class LogicalDrive : public Component {
public:
    LogicalDrive() { LogicalDrive::Initialize(); }

    bool Detect() override;
    bool Detect(const VolumeFunctions& functions);
    void Initialize() override;
};

/// The motherboard: version from the registry, the rest from WMI.
class MotherBoard : public Component {
public:
    bool Detect() override;
};

/// The network: its physical adapters, merged from the Setup API and the system's interfaces, that of the
/// default route first; then the download rate of the connection, measured only when the service wants it,
/// since it costs the visitor a download.
class NetworkDevice : public Component {
public:
    bool Detect() override;
    bool Detect(const NetworkFunctions& functions);
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

/// Memory: the physical memory that Windows can use, what of it is available, and the process's address
/// space.
class Ram : public Component {
public:
    bool Detect() override;
    bool Detect(decltype(&GlobalMemoryStatusEx) statusEx);
};

/// Sound: its devices, merged from the Setup API, WMI and the system's endpoints, that of the default output
/// first, and how many outputs and inputs are active.
class Sound : public Component {
public:
    bool Detect() override;
    bool Detect(const SoundFunctions& functions);
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

/// The active monitors, the primary one first: what each is, and what it shows. Never their serial numbers.
class Monitor : public Component {
public:
    bool Detect() override;
    bool Detect(const DisplayConfig& config);
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

/// Controllers of the class SCSI, with their kinds: real ones first. Nearly every machine has some that are
/// made by drivers.
class SCSI : public Component {
public:
    bool Detect() override;
    bool Detect(SetupLib& library);
};

}  // namespace kel
