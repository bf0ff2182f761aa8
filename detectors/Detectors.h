// The twenty detectors, in the order in which they run. Each reads its sources in `Detect`; another overload
// takes sources with which a test replaces the machine's own. `ListFacts` lists the facts that a detector
// stores.
#pragma once

#include <windows.h>

#include <span>

#include "detectors/Component.h"
#include "detectors/DiskDrives.h"
#include "detectors/OpticalDrives.h"
#include "detectors/ScsiControllers.h"
#include "detectors/StoredFacts.h"
#include "probes/software/Product.h"

namespace kel {

class GraphicsAdapters;
class CPUID;
class DisplayConfig;
struct ChassisFunctions;
struct CpuFunctions;
struct FirmwareFunctions;
struct MemoryFunctions;
struct NetworkFunctions;
struct OSFunctions;
struct SoftwareFunctions;
struct SoundFunctions;
struct VolumeFunctions;

/// The processor, merged from `cpuid`, the registry, WMI and the operating system. Measuring the clock takes
/// one second.
class CPU : public Component {
public:
    bool Detect() override;
    bool Detect(CPUID& chip, const CpuFunctions& functions);
    static StoredFacts ListFacts();
};

/// The graphics adapters, merged from the graphics interfaces, the Setup API and the registry; the first is
/// the one that a program would use. Direct3D and DxDiag load a driver and are used only for facts that the
/// service wants.
class GPU : public Component {
public:
    bool Detect() override;
    bool Detect(GraphicsAdapters& adapters);
    static StoredFacts ListFacts();
};

/// The BIOS: version and date from the registry, name and manufacturer from WMI; then the kind of the
/// firmware, Secure Boot and the TPM.
class Bios : public Component {
public:
    bool Detect() override;
    bool Detect(const FirmwareFunctions& functions);
    static StoredFacts ListFacts();
};

/// Optical drives: name, letter, whether one writes CDs or is a mounted image. Merged from the Setup API, WMI
/// and the drives' own answers; no medium is read.
class CDRom : public Component {
public:
    bool Detect() override;
    bool Detect(OpticalDrives& optical);
    static StoredFacts ListFacts();
};

/// The chassis: whether the machine has a long-term battery, that is, is portable; then its cameras, touch
/// points, pen and Bluetooth. No device is opened.
class Chassis : public Component {
public:
    bool Detect() override;
    bool Detect(const ChassisFunctions& functions);
    static StoredFacts ListFacts();
};

/// DirectX: the runtime that Windows has, the available versions of Direct3D, and what the first adapter and
/// its driver can do.
class DirectX : public Component {
public:
    bool Detect() override;
    bool Detect(GraphicsAdapters& adapters);
    static StoredFacts ListFacts();
};

/// What the optical drives can do with DVDs and Blu-ray discs. The drives are those of CDRom.
class DVD : public Component {
public:
    bool Detect() override;
    bool Detect(OpticalDrives& optical);
    static StoredFacts ListFacts();
};

/// The displays: the number of active ones, the primary one's picture, and the whole desktop.
class Graphics : public Component {
public:
    bool Detect() override;
    bool Detect(const DisplayConfig& config);
    static StoredFacts ListFacts();
};

/// Disks, with those that hold Windows first: merged from the disks' own answers, WMI and the Setup API by
/// the disk's number. No disk is woken, read or asked for its serial number.
class HardDrive : public Component {
public:
    HardDrive() { HardDrive::Initialize(); }

    bool Detect() override;
    bool Detect(DiskDrives& disks);
    void Initialize() override;
    static StoredFacts ListFacts();
};

/// Drive letters, with that of Windows first. File system and sizes are read only for fixed and RAM disks;
/// labels and shares are never read.
class LogicalDrive : public Component {
public:
    LogicalDrive() { LogicalDrive::Initialize(); }

    bool Detect() override;
    bool Detect(const VolumeFunctions& functions, DiskDrives& disks);
    void Initialize() override;
    static StoredFacts ListFacts();
};

/// The motherboard: its version from the registry, the other facts from WMI; then the machine's vendor and
/// model.
class MotherBoard : public Component {
public:
    bool Detect() override;
    static StoredFacts ListFacts();
};

/// The network: its physical adapters, merged from the Setup API and the system's interfaces, the one with
/// the default route first; then the download rate of the connection, measured only when the service wants
/// it, since it costs the visitor a download.
class NetworkDevice : public Component {
public:
    bool Detect() override;
    bool Detect(const NetworkFunctions& functions);
    static StoredFacts ListFacts();
};

/// The operating system: display name, release and edition flags, version numbers, locale, machine identifier
/// and .NET Framework as the system reports them to this host; then facts that are correct in every host. It
/// writes nothing but the machine identifier.
class OS : public Component {
public:
    OS() { OS::Initialize(); }

    bool Detect() override;
    bool Detect(const OSFunctions& functions);
    void Initialize() override;
    static StoredFacts ListFacts();

private:
    static void GetSupportInformation();
};

/// Memory: the physical memory that Windows can use, how much of it is available, the process's address
/// space, and the installed memory.
class Ram : public Component {
public:
    bool Detect() override;
    bool Detect(const MemoryFunctions& functions);
    static StoredFacts ListFacts();
};

/// Sound: its devices, merged from the Setup API, WMI and the system's endpoints, the one with the default
/// output first, and the numbers of active outputs and inputs.
class Sound : public Component {
public:
    bool Detect() override;
    bool Detect(const SoundFunctions& functions);
    static StoredFacts ListFacts();
};

/// The drivers of the first device of each kind, as the devices' detectors stored them, and the runtimes that
/// programs need. It runs after the graphics, network and sound detectors.
class Software : public Component {
public:
    bool Detect() override;
    bool Detect(const SoftwareFunctions& functions);
    static StoredFacts ListFacts();
};

/// The browsers of a table, the user's default browser, and the program that the control runs in.
class Browser : public Component {
public:
    Browser() { Browser::Initialize(); }

    bool Detect() override;
    bool Detect(const SoftwareFunctions& functions);
    /// Builds the table.
    void Initialize() override;
    static StoredFacts ListFacts();

private:
    std::span<const Product> table;
};

/// The active monitors, the primary one first: model and current picture, never serial numbers.
class Monitor : public Component {
public:
    bool Detect() override;
    bool Detect(const DisplayConfig& config);
    static StoredFacts ListFacts();
};

/// The applications of a table: which are installed, and their versions. It does not look for others.
class Applications : public Component {
public:
    Applications() { Applications::Initialize(); }

    bool Detect() override;
    bool Detect(const SoftwareFunctions& functions);
    /// Builds the table.
    void Initialize() override;
    static StoredFacts ListFacts();

private:
    std::span<const Product> table;
};

/// Controllers of the class SCSI, with their kinds: real ones first. Nearly every machine has some that exist
/// in a driver only.
class SCSI : public Component {
public:
    bool Detect() override;
    bool Detect(ScsiControllers& listed);
    static StoredFacts ListFacts();
};

}  // namespace kel
