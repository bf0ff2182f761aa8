#include "detectors/Detectors.h"
#include "machines/RealDisks.h"
#include "probes/WMI.h"
#include "support/StorageTest.h"

namespace kel {
namespace {

using namespace test;

constexpr DWORD DiskClass = 0x4D36E967;

std::wstring Path(std::size_t number)
{
    return L"\\\\.\\PhysicalDrive" + std::to_wstring(number);
}

struct Disks : StorageTest {
    FakeDevice& PlantDisk(std::size_t number, int bus = 11, const char* product = "Disk",
                          std::uint64_t bytes = 1ULL << 40)
    {
        FakeDevice& disk = storage.devices[Path(number)];
        disk.answers[DeviceProperty] = Descriptor(bus, nullptr, product, "1");
        disk.answers[GeometryRequest] = Geometry(bytes);
        return disk;
    }

    /// Of each disk model, capacity and number.
    Lines Detect()
    {
        HardDrive().Detect(storage.Functions());
        EXPECT_EQ(storage.open, 0);
        Lines lines;
        for (int index = 0; index < 300 && !At(index, {72509}).starts_with(L"("); ++index)
            lines.push_back(At(index, {72502, 72504, 72509}));
        return lines;
    }
};

TEST_F(Disks, AreDescribedWhateverTheirKind)
{
    std::size_t number = 0, listed = 0;
    for (const RealDisk& row : RealDisks) {
        FakeDevice& disk = PlantDisk(number, row.bus, row.product, row.bytes);
        disk.answers[DeviceProperty] =
            Descriptor(row.bus, row.vendor, row.product, row.revision, row.removal == MediumLeaves);
        if (row.bytes == 1474560)
            disk.answers[GeometryRequest] = Geometry(row.bytes, F3_1Pt44_512);
        if (row.seeks != Silent)
            disk.answers[SeekPenalty] = Flag(row.seeks == Costly);
        disk.answers[HotplugRequest] = HotplugInfo(false, row.removal == DiskLeaves);
        PlantWmiDisk(static_cast<int>(number++), row.wmi);
        listed += row.expected != nullptr;
    }
    EXPECT_EQ(Detect().size(), listed);
    std::map<std::wstring, std::wstring> stored;
    for (int index = 0; index < static_cast<int>(listed); ++index)
        stored[At(index, {72509})] = At(index, {72502, 72504, 72505, 72506, 72507, 72508});
    number = 0;
    for (const RealDisk& row : RealDisks) {
        const auto found = stored.find(std::to_wstring(number++));
        EXPECT_EQ(found == stored.end() ? L"(none)" : found->second,
                  row.expected == nullptr ? L"(none)" : row.expected)
            << row.kind;
    }
}

TEST_F(Disks, AreJoinedByTheirNumberAndThoseOfWindowsComeFirst)
{
    const wchar_t* ids[] = {L"SCSI\\DISK&VEN_B\\SERIAL-4711", L"SCSI\\DISK&VEN_A\\5&1&0", L"IDE\\DISKC\\3&0"};
    PlantedDevice b(DiskClass, ids[0]), a(DiskClass, ids[1]), lost(DiskClass, ids[2]);
    b.With(SPDRP_HARDWAREID, L"SCSI\\DiskB").With(SPDRP_FRIENDLYNAME, L"Named in full");
    a.With(SPDRP_HARDWAREID, L"SCSI\\DiskA").With(SPDRP_FRIENDLYNAME, L"another");
    lost.With(SPDRP_HARDWAREID, L"IDE\\DiskC").With(SPDRP_FRIENDLYNAME, L"of which nobody tells the number");
    const std::wstring interfaceClass = L"#{53f56307-b6bf-11d0-94f2-00a0c91efb8b}";
    storage.devices[L"\\\\?\\SCSI#DISK&VEN_B#SERIAL-4711" + interfaceClass].answers[NumberRequest] =
        Number(7, 1);
    storage.devices[L"\\\\?\\SCSI#DISK&VEN_A#5&1&0" + interfaceClass].answers[NumberRequest] = Number(7, 2);
    PlantDisk(0, 11, "Spanned");
    PlantDisk(1, 11, "Named");
    PlantDisk(2, 7, "Twin").answers[HotplugRequest] = HotplugInfo(false, true);
    PlantDisk(3, 11, "Last");
    PlantWmiDisk(3, L"Last one");
    PlantWmiDisk(-1, L"No number");
    PlantWmiDisk(4, L"Of WMI alone");
    storage.devices[L"\\\\.\\C:"].answers[ExtentsRequest] = Extents({3, 1, 3});
    const LogCapture log(3);
    EXPECT_EQ(Detect(), (Lines{L"Last one|1.0 TB|3", L"Named in full|1.0 TB|1", L"Spanned|1.0 TB|0",
                               L"Of WMI alone||4", L"Twin|1.0 TB|2"}));
    EXPECT_EQ(session.Texts({72500, 72501, 72511}), L"Yes|4|3.0 TB|");
    EXPECT_EQ(At(1, {72503, 72510}) + L" " + At(4, {72503, 72507, 72510}),
              L"SCSI\\DISKB|Yes SCSI\\DISKA|Yes|No");
    Lines sources = log.Lines();
    std::erase_if(sources,
                  [](const std::wstring& line) { return line.find(L" model from") == std::wstring::npos; });
    EXPECT_EQ(
        sources,
        (Lines{L"TRACE HardDrive[0] model from WMI", L"TRACE HardDrive[1] model from the Setup API",
               L"TRACE HardDrive[2] model from the storage functions", L"TRACE HardDrive[3] model from WMI",
               L"TRACE HardDrive[4] model from the storage functions"}));
    for (const std::wstring& path : storage.opened)  // without rights, and no volume but that of Windows
        EXPECT_TRUE(!path.ends_with(L"reading") && (path.size() != 6 || path == L"\\\\.\\C:")) << path;
}

TEST_F(Disks, GiveWhatTheyTellWhenOneFails)
{
    WMI::Instance();
    const std::wstring warning = L"WARN Disk 1 does not tell all: ", other = L"Zero|1.0 TB|0";
    const struct {
        const char* what;
        std::function<void(FakeDevice&)> spoil;
        const wchar_t* line;  ///< null when it is left out
        std::wstring complaint;
    } rows[] = {
        {"all is well", [](FakeDevice&) {}, L"One|1.0 TB|1", L""},
        {"no permission", [](FakeDevice& disk) { disk.openError = ERROR_ACCESS_DENIED; }, L"||1",
         warning + L"5"},
        {"in use", [](FakeDevice& disk) { disk.openError = ERROR_SHARING_VIOLATION; }, L"||1",
         warning + L"32"},
        {"gone before it is opened", [](FakeDevice& disk) { disk.openError = ERROR_FILE_NOT_FOUND; }, nullptr,
         warning + L"2"},
        {"gone between two calls",
         [](FakeDevice& disk) { disk.errors[GeometryRequest] = ERROR_DEVICE_NOT_CONNECTED; }, nullptr,
         warning + L"1167"},
        {"removed", [](FakeDevice& disk) { disk.errors[DeviceProperty] = 1617; }, nullptr, warning + L"1617"},
        {"no descriptor", [](FakeDevice& disk) { disk.answers.erase(DeviceProperty); }, L"|1.0 TB|1",
         warning + L"50"},
        {"a cut descriptor", [](FakeDevice& disk) { disk.answers[DeviceProperty].resize(31); }, L"|1.0 TB|1",
         warning + L"13"},
        {"a long descriptor", [](FakeDevice& disk) { disk.answers[DeviceProperty].resize(5000); },
         L"One|1.0 TB|1", L""},
        {"no geometry", [](FakeDevice& disk) { disk.answers.erase(GeometryRequest); }, L"One||1",
         warning + L"50"},
        {"a cut geometry", [](FakeDevice& disk) { disk.answers[GeometryRequest].resize(20); }, L"One||1",
         warning + L"13"},
        {"asleep", [](FakeDevice& disk) { disk.isAwake = false; }, L"One||1", L""},
        {"no medium", [](FakeDevice& disk) { disk.errors[GeometryRequest] = ERROR_NOT_READY; }, nullptr, L""},
        {"not ready for anything", [](FakeDevice& disk) { disk.answers.clear(); }, L"||1", warning + L"50"},
    };
    for (const auto& row : rows) {
        storage.devices.clear();
        storage.devices[L"\\\\.\\C:"].answers[NumberRequest] = Number(7, 0);
        PlantDisk(0, 11, "Zero");
        row.spoil(PlantDisk(1, 11, "One"));
        session.values = SystemValues();
        const LogCapture log(2);
        EXPECT_EQ(Detect(), row.line != nullptr ? (Lines{other, row.line}) : Lines{other}) << row.what;
        Lines complaints = Complaints(log);
        std::erase_if(complaints,
                      [](const std::wstring& line) { return line.find(L"WMI") != std::wstring::npos; });
        EXPECT_EQ(complaints, row.complaint.empty() ? Lines() : Lines{row.complaint}) << row.what;
    }
}

TEST_F(Disks, AreListedByOneSourceWhenTheOthersHaveNone)
{
    storage.listError = ERROR_ACCESS_DENIED;
    const LogCapture log(2);
    EXPECT_EQ(Detect(), Lines{L"||"});  // what is stored before anything is known
    EXPECT_EQ(session.Texts({72500, 72501, 72511}) +
                  At(0, {72502, 72503, 72504, 72505, 72506, 72507, 72508, 72509, 72510}),
              L"No|0||||||||||");
    EXPECT_THAT(Complaints(log), testing::Contains(L"WARN The system does not list its devices: 5"));
    EXPECT_THAT(Complaints(log), testing::Contains(L"WARN The volume of Windows does not tell its disks: 2"));
    for (int number = 0; number < 250; ++number)
        PlantWmiDisk(number, L"Of WMI");
    EXPECT_EQ(Detect().size(), 200U);
    EXPECT_EQ(session.Texts({72500, 72501, 72511}) + At(199, {72502, 72509}), L"Yes|200||Of WMI|199");
    wmi.objects.clear();
    session.values = SystemValues();
    PlantedDevice nameless(DiskClass);
    nameless.With(SPDRP_HARDWAREID, L"IDE\\DiskST31000528AS____________CC38____");
    HardDrive().Detect(storage.Functions());
    EXPECT_EQ(session.Texts({72501, 72502, 72503, 72509}),
              L"1|ST31000528AS|IDE\\DISKST31000528AS____________CC38____||");
}

}  // namespace
}  // namespace kel
