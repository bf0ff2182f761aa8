#include "kit/RecordedDevices.h"

#include <initializer_list>

#include "kit/RecordedControllers.h"
#include "kit/RecordedDisks.h"
#include "kit/RecordedDisplays.h"
#include "kit/RecordedGraphics.h"
#include "kit/RecordedNetwork.h"
#include "kit/RecordedOptical.h"
#include "kit/RecordedSound.h"
#include "kit/RecordedVolumes.h"

namespace kel::kit {

namespace {

/// Lines, and the detectors whose answers they are; none of both where something cannot be recorded.
void Add(const std::vector<std::string>& recorded, std::initializer_list<std::string_view> of,
         DeviceRecording& devices)
{
    if (recorded.empty())
        return;
    devices.lines.insert(devices.lines.end(), recorded.begin(), recorded.end());
    devices.detectors.insert(of);
}

/// The same for lines of which there may be none on a machine without such devices.
void AddWhole(const std::optional<std::vector<std::string>>& recorded,
              std::initializer_list<std::string_view> of, DeviceRecording& devices)
{
    if (recorded) {
        devices.lines.insert(devices.lines.end(), recorded->begin(), recorded->end());
        devices.detectors.insert(of);
    }
}

}  // namespace

DeviceRecording RecordDevices(const DeviceEdges& edges, DeviceMasks& masks)
{
    DeviceRecording devices;
    Add(RecordGraphics(edges, masks), {"GPU"}, devices);
    Add(RecordDisplays(edges, masks), {"Graphics", "Monitor"}, devices);
    Add(RecordDisks(edges, masks), {"HardDrive"}, devices);
    if (devices.detectors.contains("HardDrive"))
        Add(RecordVolumes(edges.volumes), {"LogicalDrive"}, devices);
    AddWhole(RecordOpticalDrives(edges.storage, masks), {"CDRom", "DVD"}, devices);
    AddWhole(RecordControllers(masks), {"SCSI"}, devices);
    Add(RecordNetwork(edges, masks), {"NetworkDevice"}, devices);
    Add(RecordSound(edges, masks), {"Sound"}, devices);
    return devices;
}

}  // namespace kel::kit
