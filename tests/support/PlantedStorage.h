#pragma once

#include <memory>
#include <vector>

#include "support/FakeStorage.h"
#include "support/FakeVolumes.h"
#include "support/FakeWmi.h"
#include "support/Machines.h"
#include "support/PlantedDevice.h"

namespace kel::test {

/// A machine's disks, optical drives, controllers and volumes: for the Setup API, for WMI, and in tables of
/// functions.
struct PlantedStorage {
    void Plant(const Machine& machine, FakeWmiData& wmi);

    FakeStorage devices;
    FakeVolumes volumes;

private:
    PlantedDevice& List(DeviceClass deviceClass, const std::wstring& instance, const std::wstring& hardwareId,
                        const std::wstring& name);
    void PlantDisks(const Machine& machine, FakeWmiData& wmi);
    void PlantFaults(const Machine& machine);
    void PlantOpticalDrives(const Machine& machine);
    void PlantVolumes(const Machine& machine);

    std::vector<std::unique_ptr<PlantedDevice>> listed;
};

}  // namespace kel::test
