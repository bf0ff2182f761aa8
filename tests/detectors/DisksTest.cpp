#include "detectors/Detectors.h"
#include "machines/RealDisks.h"
#include "probes/WMI.h"
#include "support/StorageTest.h"

namespace kel {
namespace {

using namespace test;

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
        for (int index = 0; index < 300 && !session.At(index, {72509}).starts_with(L"("); ++index)
            lines.push_back(session.At(index, {72502, 72504, 72509}));
        return lines;
    }
};

TEST_F(Disks, AreDescribedWhateverTheirKind)
{
    Lines expected;
    std::wistringstream rows(RealDisks);
    for (std::wstring row, field; std::getline(rows, row);) {
        std::wistringstream text(row);
        std::vector<std::string>
            fields;  // kind, bus, vendor, product, what it says, bytes, WMI's model, stored
        while (std::getline(text, field, L';'))
            fields.emplace_back(field.begin(), field.end());
        if (fields.size() != 8)
            continue;
        const std::string model = fields[6] == "=" ? fields[3] : fields[6].substr(0, fields[6].find('!'));
        const auto says = [&fields](char what) { return fields[4].find(what) != std::string::npos; };
        FakeDevice& disk = PlantDisk(expected.size());
        disk.answers[DeviceProperty] =
            Descriptor(std::stoi(fields[1]), fields[2].empty() ? nullptr : fields[2].c_str(),
                       fields[3].c_str(), "1", says('m'));
        disk.answers[GeometryRequest] =
            Geometry(std::stoull(fields[5]), says('F') ? F3_1Pt44_512 : FixedMedia);
        disk.answers[HotplugRequest] = HotplugInfo(false, says('d'));
        if (says('f') || says('c'))
            disk.answers[SeekPenalty] = Flag(says('c'));
        std::string named = fields[6] == "=" ? fields[3] : fields[6];
        std::erase(named, '!');
        PlantWmiDisk(static_cast<int>(expected.size()), std::wstring(named.begin(), named.end()).c_str());
        const std::string stored = fields[7][0] == '=' ? model + fields[7].substr(1) : fields[7];
        expected.emplace_back(stored.begin(), stored.end());
    }
    ASSERT_EQ(expected.size(), 50U);
    const int listed = static_cast<int>(std::ssize(expected) - std::ranges::count(expected, L"left out"));
    EXPECT_EQ(Detect().size(), static_cast<std::size_t>(listed));
    Lines stored(expected.size(), L"left out");
    for (int index = 0; index < listed; ++index)
        stored.at(std::stoul(session.At(index, {72509}))) =
            session.At(index, {72502, 72504, 72505, 72506, 72507});
    EXPECT_EQ(stored, expected);
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
    EXPECT_EQ(session.At(1, {72503, 72510}) + L" " + session.At(4, {72503, 72507, 72510}),
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
    const Request nothing;
    const struct {
        const char* what;
        DWORD openError;
        Request request;  ///< that is refused, or answered with so many bytes
        DWORD error;
        std::size_t size;
        const wchar_t* line;  ///< null when it is left out
        const wchar_t* complaint;
    } rows[] = {
        {"all is well", 0, nothing, 0, 0, L"One|1.0 TB|1", nullptr},
        {"no permission", ERROR_ACCESS_DENIED, nothing, 0, 0, L"||1", L"5"},
        {"in use", ERROR_SHARING_VIOLATION, nothing, 0, 0, L"||1", L"32"},
        {"gone before it is opened", ERROR_FILE_NOT_FOUND, nothing, 0, 0, nullptr, L"2"},
        {"gone between two calls", 0, GeometryRequest, ERROR_DEVICE_NOT_CONNECTED, 0, nullptr, L"1167"},
        {"removed", 0, DeviceProperty, 1617, 0, nullptr, L"1617"},
        {"no descriptor", 0, DeviceProperty, ERROR_NOT_SUPPORTED, 0, L"|1.0 TB|1", L"50"},
        {"a cut descriptor", 0, DeviceProperty, 0, 31, L"|1.0 TB|1", L"13"},
        {"a long descriptor", 0, DeviceProperty, 0, 5000, L"One|1.0 TB|1", nullptr},
        {"no geometry", 0, GeometryRequest, ERROR_NOT_SUPPORTED, 0, L"One||1", L"50"},
        {"a cut geometry", 0, GeometryRequest, 0, 20, L"One||1", L"13"},
        {"no medium", 0, GeometryRequest, ERROR_NOT_READY, 0, nullptr, nullptr},
    };
    for (const auto& row : rows) {
        storage.devices.clear();
        storage.devices[L"\\\\.\\C:"].answers[NumberRequest] = Number(7, 0);
        PlantDisk(0, 11, "Zero");
        FakeDevice& disk = PlantDisk(1, 11, "One");
        disk.openError = row.openError;
        if (row.error != 0)
            disk.errors[row.request] = row.error;
        else if (row.size != 0)
            disk.answers[row.request].resize(row.size);
        session.values = SystemValues();
        const LogCapture log(2);
        EXPECT_EQ(Detect(), row.line != nullptr ? (Lines{other, row.line}) : Lines{other}) << row.what;
        const std::wstring complaint = row.complaint != nullptr ? warning + row.complaint : L"WARN WMI";
        EXPECT_TRUE(Complaints(log).front().starts_with(complaint)) << row.what;
        EXPECT_EQ(Complaints(log).size(), row.complaint != nullptr ? 2U : 1U) << row.what;
    }
}

TEST_F(Disks, AreListedByOneSourceWhenTheOthersHaveNone)
{
    storage.listError = ERROR_ACCESS_DENIED;
    const LogCapture log(2);
    EXPECT_EQ(Detect(), Lines{L"||"});  // what is stored before anything is known
    EXPECT_EQ(session.Texts({72500, 72501, 72511}) +
                  session.At(0, {72502, 72503, 72504, 72505, 72506, 72507, 72508, 72509, 72510}),
              L"No|0||||||||||");
    EXPECT_THAT(Complaints(log), testing::Contains(L"WARN The system does not list its devices: 5"));
    EXPECT_THAT(Complaints(log), testing::Contains(L"WARN The volume of Windows does not tell its disks: 2"));
    for (int number = 0; number < 250; ++number)
        PlantWmiDisk(number, L"Of WMI");
    EXPECT_EQ(Detect().size(), 200U);
    EXPECT_EQ(session.Texts({72500, 72501, 72511}) + session.At(199, {72502, 72509}), L"Yes|200||Of WMI|199");
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
