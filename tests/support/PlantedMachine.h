#pragma once

#include <memory>
#include <vector>

#include "probes/cpu/CPUID.h"
#include "probes/sound/SoundEndpoints.h"
#include "probes/storage/Disks.h"
#include "support/FakeDisplays.h"
#include "support/FakeSound.h"
#include "support/FakeWmi.h"
#include "support/Machines.h"
#include "support/PlantedGraphics.h"
#include "support/PlantedNetwork.h"
#include "support/PlantedSoftware.h"
#include "support/PlantedStorage.h"
#include "support/PlantedSystem.h"

namespace kel::test {

/// The results of running the detectors on a machine.
struct Detected {
    Lines stored;            ///< "id[index]=text"
    Lines reasons;           ///< "id[index]=reason" of empty and missing values
    Lines log;               ///< at all levels
    Lines opened;            ///< paths of storage devices, with " for reading" where they were
    std::wstring letters;    ///< of volumes that were opened
    std::wstring report;     ///< with all ids wanted
    std::wstring calls;      ///< that load a graphics driver, such as "11:2 12:3"
    ULONG held = 0;          ///< references that remain on graphics and sound objects and storage devices
    bool isMisused = false;  ///< a function was called for something forbidden, or without the error mode
};

/// A machine with all its parts: devices for the Setup API, the registry, WMI's objects, and functions that
/// answer for its storage, volumes, network, sound, graphics and displays. The words of its description are
/// explained in tests/machines/README.md.
class PlantedMachine {
public:
    /// @param newWmi of a fake that lives as long as the process uses WMI
    PlantedMachine(const Machine& newMachine, FakeWmiData& newWmi);
    PlantedMachine(const PlantedMachine&) = delete;
    PlantedMachine& operator=(const PlantedMachine&) = delete;

    /// Runs the detectors in a new session: all, or those that the description names.
    Detected Detect();

    /// Runs the detectors with these names in the current session; all if there are no names.
    void Run(const Lines& names);

    /// Shows the functions that answer for its storage, volumes, network, displays, graphics adapters and
    /// sound, in this order, while its sound endpoints answer, too.
    template <typename Look>
    void Show(Look look)
    {
        const FakeSound endpoints(sound);
        PlantedGraphics graphics(machine);
        const StorageFunctions disks = storage.devices.Functions();
        VolumeFunctions volumes = storage.volumes.Functions();
        volumes.listDisks = [&disks](const std::wstring& letter) { return ReadVolumeDisks(disks, letter); };
        look(disks, volumes, network.functions, displays.Functions(), graphics.functions,
             SoundFunctions{[this] { return CountWaveOutputs(); }});
    }

private:
    UINT CountWaveOutputs() const;
    void PlantBasics();
    void PlantChassis();
    void PlantGraphics();
    void PlantDisplays();
    void PlantSound();
    void Reverse();

    const Machine machine;
    FakeWmiData& wmi;
    const PlantedSystem system;
    PlantedSoftware software;  // with the registry, in which the devices stand
    std::vector<std::unique_ptr<PlantedDevice>> devices;
    PlantedNetwork network;
    const PlantedSound soundDevices;
    FakeSoundData sound;
    PlantedStorage storage;
    FakeDisplays displays;
    std::map<std::uint32_t, CpuRegisters> leaves;
    std::wstring calls;
    ULONG held = 0;
};

}  // namespace kel::test
