#include "detectors/Detectors.h"
#include "detectors/OpticalDrives.h"
#include "machines/RealOpticalDrives.h"
#include "support/ShowAnswers.h"
#include "support/StorageTest.h"

namespace kel {
namespace {

using namespace test;

const std::vector<int> DvdBurner = {0x08, 0x09, 0x0A, 0x10, 0x11, 0x12, 0x13,
                                    0x14, 0x15, 0x16, 0x1A, 0x1B, 0x2B};

TEST(OpticalAbilities, AreToldByRealNames)
{
    std::wistringstream rows(RealOpticalDrives);
    std::wstring row, abilities, name;
    int names = 0;
    while (std::getline(rows, row)) {
        std::wistringstream text(row);
        std::getline(text, abilities, L':');
        for (; std::getline(text >> std::ws, name, L';'); ++names)
            EXPECT_EQ(ShowAbilities(GetAbilitiesOfName(name)), abilities) << name;
    }
    EXPECT_EQ(names, 63);
    const std::pair<int, const wchar_t*> profiles[] = {
        {0x00, L""},   {0x08, L""},   {0x09, L"C"},   {0x0A, L"C"},   {0x10, L"d"},  {0x11, L"dD"},
        {0x12, L"dD"}, {0x14, L"dD"}, {0x15, L"dD2"}, {0x17, L"dD2"}, {0x18, L"dD"}, {0x19, L""},
        {0x1A, L"dD"}, {0x1B, L"dD"}, {0x2A, L"dD2"}, {0x2B, L"dD2"}, {0x40, L"b"},  {0x41, L"bB"},
        {0x43, L"bB"}, {0x50, L""},   {0xFFFF, L""},
    };
    for (const auto& [profile, told] : profiles) {
        const std::string answer = Profiles({profile});
        EXPECT_EQ(ShowAbilities(ReadProfiles(std::as_bytes(std::span(answer))).has), told) << profile;
    }
}

struct OpticalDrives : StorageTest {
    FakeDevice& PlantDrive(const std::wstring& path, std::uint32_t number, const char* product)
    {
        FakeDevice& drive = storage.devices[path];
        drive.answers[NumberRequest] = Number(FILE_DEVICE_CD_ROM, number);
        drive.answers[DeviceProperty] = Descriptor(11, nullptr, product, "1.00", true);
        storage.letters[std::wstring(1, static_cast<wchar_t>(L'E' + number)) + L":"] =
            L"\\Device\\CdRom" + std::to_wstring(number);
        return drive;
    }

    void PlantWmiDrive(const wchar_t* id, const wchar_t* name, const wchar_t* letter, const wchar_t* media)
    {
        wmi.objects[L"SELECT * FROM Win32_CDROMDrive"] = {{{L"Name", {name}},
                                                           {L"PNPDeviceID", {id}},
                                                           {L"Drive", {letter}},
                                                           {L"MediaType", {media}},
                                                           {L"SerialNumber", {L"SERIAL-4711"}}}};
    }

    std::wstring Detect()
    {
        CDRom().Detect(storage.Functions());
        DVD().Detect(storage.Functions());
        EXPECT_EQ(storage.open, 0);
        for (const std::wstring& path : storage.opened)  // devices, never volumes
            EXPECT_TRUE(path.find(L'#') != std::wstring::npos || path.find(L"CdRom") != std::wstring::npos)
                << path;
        return session.Texts({72100, 72101}) + L" " + session.Texts({72300, 72301, 72302, 72303, 72304});
    }
};

TEST_F(OpticalDrives, AreOneListForBothWithRealOnesFirst)
{
    const std::wstring interfaceClass = L"#{53f56308-b6bf-11d0-94f2-00a0c91efb8b}";
    PlantedDevice image(OpticalClass, L"SCSI\\CDROM&VEN_MSFT\\2&1"),
        burner(OpticalClass, L"IDE\\CDROMB\\5&1"), twin(OpticalClass, L"IDE\\CDROMB\\5&2");
    image.With(SPDRP_FRIENDLYNAME, L"Msft Virtual DVD-ROM").With(SPDRP_HARDWAREID, L"SCSI\\CdRomMsft");
    for (PlantedDevice* drive : {&burner, &twin})
        drive->With(SPDRP_FRIENDLYNAME, L"HL-DT-ST  DVDRAM GH24NSD1").With(SPDRP_HARDWAREID, L"IDE\\CdRomB");
    PlantDrive(L"\\\\?\\IDE#CDROMB#5&1" + interfaceClass, 0, "x").answers[ConfigurationRequest] =
        Profiles(DvdBurner);
    FakeDevice& locked = PlantDrive(L"\\\\?\\IDE#CDROMB#5&2" + interfaceClass, 1, "x");
    locked.isReadable = false;
    locked.answers[ConfigurationRequest] = Profiles({0x43});
    locked.answers[MediaTypesRequest] = MediaTypes(FILE_DEVICE_DVD, {{CD_RW, MEDIA_READ_WRITE}});
    PlantDrive(L"\\\\?\\SCSI#CDROM&VEN_MSFT#2&1" + interfaceClass, 2, "x").answers[ConfigurationRequest] =
        Profiles({0x43});
    PlantWmiDrive(L"ide\\cdromb\\5&2", L"of WMI", L"\\\\?\\Volume{1}\\", L"DVD Writer");
    const LogCapture log(3);
    EXPECT_EQ(Detect(), L"Yes|2| Yes|Yes|Yes|||");
    const auto drive = [this](int index) { return session.At(index, {72102, 72103, 72104, 72105, 72106}); };
    EXPECT_EQ(drive(0), L"HL-DT-ST DVDRAM GH24NSD1|IDE\\CDROMB|E:|Yes|No");
    EXPECT_EQ(drive(1), L"HL-DT-ST DVDRAM GH24NSD1|IDE\\CDROMB|F:|Yes|No");
    EXPECT_EQ(drive(2), L"Msft Virtual DVD-ROM|SCSI\\CDROMMSFT|G:|No|Yes");
    Lines sources = log.Lines();
    std::erase_if(sources, [](const std::wstring& line) { return !line.starts_with(L"TRACE CDRom[1]"); });
    EXPECT_EQ(sources, (Lines{L"TRACE CDRom[1] abilities from the media types",
                              L"TRACE CDRom[1] name from the Setup API",
                              L"TRACE CDRom[1] device id from the Setup API",
                              L"TRACE CDRom[1] letter from the storage functions"}));
}

TEST_F(OpticalDrives, TellWhatTheyCanByTheBestSource)
{
    const std::string dvdMedia = MediaTypes(FILE_DEVICE_DVD, {{DVD_ROM, MEDIA_READ_ONLY}});
    const struct {
        const char* what;
        const wchar_t* name;
        std::string profiles, media;
        const wchar_t* told;
    } rows[] = {
        {"profiles tell all, whatever the name", L"HL-DT-ST BD-RE WH16NS40", Profiles({0x08, 0x10}), dvdMedia,
         L"Yes|1| Yes|No|No|No|No|"},
        {"media types, raised by the name", L"ASUS BW-16D1HT", "", dvdMedia, L"Yes|1| Yes|Yes||Yes|Yes|"},
        {"media types alone", L"Drive", "", dvdMedia, L"Yes|1| Yes|||||"},
        {"a part of the profiles, raised by the name", L"DVDRAM", Profiles({0x43, 0x10}).substr(0, 16), "",
         L"Yes|1| Yes|Yes||Yes|Yes|"},
        {"the name alone", L"DVD-ROM", "", "", L"Yes|1| Yes|||||"},
        {"nothing", L"Drive", "", "", L"Yes|1| |||||"},
        {"an image in a drive of no hardware", L"ELBY CLONEDRIVE", Profiles({0x43}), "",
         L"No|0| No|No|No|No|No|"},
    };
    for (const auto& row : rows) {
        storage.devices.clear();
        FakeDevice& drive = PlantDrive(L"\\\\.\\CdRom0", 0, "of the descriptor");
        if (!row.profiles.empty())
            drive.answers[ConfigurationRequest] = row.profiles;
        if (!row.media.empty())
            drive.answers[MediaTypesRequest] = row.media;
        PlantWmiDrive(L"SCSI\\CDROM&VEN_X\\SERIAL-4711", row.name, L"E:", L"Unknown");
        EXPECT_EQ(Detect(), row.told) << row.what;
        EXPECT_EQ(session.Texts({72102, 72103, 72104}), row.name + std::wstring(L"|SCSI\\CDROM&VEN_X|E:|"));
    }
}

TEST_F(OpticalDrives, AreListedAsDevicesWhenNoOtherSourceHasThem)
{
    EXPECT_EQ(Detect(), L"No|0| No|No|No|No|No|");
    EXPECT_EQ(session.At(0, {72102, 72103, 72104, 72105, 72106}), L"||||");
    PlantDrive(L"\\\\.\\CdRom0", 0, "Msft Virtual DVD").answers[DeviceProperty] =
        Descriptor(15, "Msft", "Image", "1");
    PlantDrive(L"\\\\.\\CdRom1", 1, "HL-DT-ST BD-RE").answers[ConfigurationRequest] = Profiles(DvdBurner);
    PlantDrive(L"\\\\.\\CdRom2", 2, "gone").openError = ERROR_FILE_NOT_FOUND;
    PlantDrive(L"\\\\.\\CdRom3", 3, "a disk").answers[NumberRequest] = Number(FILE_DEVICE_DISK, 3);
    EXPECT_EQ(Detect(), L"Yes|1| Yes|Yes|Yes|No|No|");
    EXPECT_EQ(session.At(0, {72102, 72104, 72105, 72106}) + L" " + session.At(1, {72102, 72104, 72106}) +
                  session.At(2, {72102}),
              L"HL-DT-ST BD-RE|F:|Yes|No Msft Image|E:|Yes(none)");
    storage.devices.clear();  // listed, and none answers
    PlantWmiDrive(L"SCSI\\CDROM&VEN_X\\1", L"DVDRAM", L"e:", L"");
    const LogCapture log(2);
    EXPECT_EQ(Detect(), L"Yes|1| Yes|Yes||||");
    EXPECT_THAT(Complaints(log), testing::Contains(L"WARN An optical drive does not answer."));
}

}  // namespace
}  // namespace kel
