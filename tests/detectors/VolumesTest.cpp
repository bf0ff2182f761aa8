#include "detectors/Detectors.h"
#include "platform/ErrorMode.h"
#include "support/FakeVolumes.h"
#include "support/StorageTest.h"

namespace kel {
namespace {

using namespace test;

constexpr ULONGLONG Gigabyte = 1ULL << 30;

struct Volumes : testing::Test {
    FakeVolumes fake;
    TestSession session;

    Lines Detect()
    {
        session.values = SystemValues();
        fake.opened.clear();
        LogicalDrive().Detect(fake.Functions());
        return session.Lines(72600, 72699);
    }
};

TEST_F(Volumes, AreListedWithThatOfWindowsFirstAndFixedOnesAloneAreOpened)
{
    fake.windows = L"d:\\Windows";
    fake.volumes = {
        {L'A', {DRIVE_REMOVABLE, L"FAT", Gigabyte, Gigabyte, L"\\Device\\Floppy0"}},
        {L'C', {DRIVE_FIXED, L"NTFS", 100 * Gigabyte, 20 * Gigabyte}},
        {L'D', {DRIVE_FIXED, L"ReFS", 200 * Gigabyte, 30 * Gigabyte}},
        {L'E', {DRIVE_CDROM, L"UDF", Gigabyte, Gigabyte, L"\\Device\\CdRom0"}},
        {L'F', {DRIVE_FIXED, L"NTFS", 100 * Gigabyte, 20 * Gigabyte, L"\\??\\C:\\Users\\Someone"}},
        {L'N', {DRIVE_NO_ROOT_DIR, L"", 0, 0, L""}},
        {L'R', {DRIVE_RAMDISK, L"FAT32", Gigabyte, Gigabyte}},
        {L'U', {DRIVE_REMOVABLE, L"exFAT", Gigabyte, Gigabyte}},
        {L'X',
         {DRIVE_REMOTE, L"NTFS", Gigabyte, Gigabyte, L"\\Device\\LanmanRedirector\\;X:0\\server\\share"}},
        {L'Y', {DRIVE_REMOTE, L"NTFS", Gigabyte, Gigabyte, L"\\??\\UNC\\server\\share"}},
    };
    EXPECT_EQ(Detect(),
              (Lines{L"72600[0]=Yes",       L"72601[0]=2",       L"72612[0]=50.0 GB",   L"72608[0]=2",
                     L"72609[0]=1",         L"72610[0]=1",       L"72611[0]=1",         L"72602[0]=D:",
                     L"72603[0]=fixed",     L"72604[0]=ReFS",    L"72605[0]=200.0 GB",  L"72606[0]=30.0 GB",
                     L"72607[0]=Yes",       L"72602[1]=C:",      L"72603[1]=fixed",     L"72604[1]=NTFS",
                     L"72605[1]=100.0 GB",  L"72606[1]=20.0 GB", L"72607[1]=No",        L"72602[2]=F:",
                     L"72603[2]=fixed",     L"72604[2]=NTFS",    L"72605[2]=100.0 GB",  L"72606[2]=20.0 GB",
                     L"72607[2]=No",        L"72602[3]=R:",      L"72603[3]=RAM",       L"72604[3]=FAT32",
                     L"72605[3]=1.0 GB",    L"72606[3]=1.0 GB",  L"72607[3]=No",        L"72602[4]=A:",
                     L"72603[4]=removable", L"72604[4]=",        L"72605[4]=",          L"72606[4]=",
                     L"72607[4]=No",        L"72602[5]=U:",      L"72603[5]=removable", L"72604[5]=",
                     L"72605[5]=",          L"72606[5]=",        L"72607[5]=No",        L"72602[6]=E:",
                     L"72603[6]=optical",   L"72604[6]=",        L"72605[6]=",          L"72606[6]=",
                     L"72607[6]=No",        L"72602[7]=X:",      L"72603[7]=remote",    L"72604[7]=",
                     L"72605[7]=",          L"72606[7]=",        L"72607[7]=No",        L"72602[8]=Y:",
                     L"72603[8]=remote",    L"72604[8]=",        L"72605[8]=",          L"72606[8]=",
                     L"72607[8]=No",        L"72602[9]=N:",      L"72603[9]=",          L"72604[9]=",
                     L"72605[9]=",          L"72606[9]=",        L"72607[9]=No"}));
    EXPECT_EQ(fake.opened, L"CCDDFFRR");
}

TEST_F(Volumes, GiveWhatTheyTellWhenOneFails)
{
    const FakeVolume sound = {DRIVE_FIXED, L"NTFS", 2 * Gigabyte, Gigabyte};
    const Lines none = {L"72600[0]=No", L"72601[0]=0", L"72612[0]=", L"72608[0]=0", L"72609[0]=0",
                        L"72610[0]=0",  L"72611[0]=0", L"72602[0]=", L"72603[0]=",  L"72604[0]=",
                        L"72605[0]=",   L"72606[0]=",  L"72607[0]="};
    const struct {
        const char* what;
        FakeVolume volume;
        const wchar_t* told;  ///< file system, size, free
        const wchar_t* complaint;
    } rows[] = {
        {"sound", sound, L"NTFS|2.0 GB|1.0 GB", nullptr},
        {"full", {DRIVE_FIXED, L"NTFS", Gigabyte, 0}, L"NTFS|1.0 GB|0.0 B", nullptr},
        {"raw", {DRIVE_FIXED}, L"||", L"WARN Volume D: does not tell all: 1005"},
        {"locked", {.error = 0x80310000}, L"||", L"WARN Volume D: does not tell all: 2150694912"},
        {"without sizes", {DRIVE_FIXED, L"NTFS"}, L"NTFS||", L"WARN Volume D: does not tell all: 1005"},
        {"without a file system",
         {.size = 3, .free = 2},
         L"|3.0 B|2.0 B",
         L"WARN Volume D: does not tell all: 1005"},
        {"throws", {.throws = true}, L"||", L"ERR Error in a volume's answers."},
        {"a long alias",
         {DRIVE_FIXED, L"NTFS", Gigabyte, 0, std::wstring(300, L'x')},
         L"NTFS|1.0 GB|0.0 B",
         nullptr},
    };
    for (const auto& row : rows) {
        fake.volumes = {{L'C', sound}, {L'D', row.volume}};
        const LogCapture log(2);
        Detect();
        const auto told = [this](int index) {
            std::wstring texts;
            for (const unsigned id : {72604U, 72605U, 72606U})
                texts += (id > 72604 ? L"|" : L"") +
                         session.values.GetValue(SystemValueID(GroupID(id), index)).Text();
            return texts;
        };
        EXPECT_EQ(told(0), L"NTFS|2.0 GB|1.0 GB") << row.what;
        EXPECT_EQ(told(1), row.told) << row.what;
        EXPECT_EQ(Complaints(log), row.complaint != nullptr ? Lines{row.complaint} : Lines()) << row.what;
        EXPECT_EQ(session.Text(72601), row.volume.target.size() > 99 ? L"1" : L"2") << row.what;
    }
    fake.volumes.clear();
    const LogCapture log(2);
    EXPECT_EQ(Detect(), none);
    EXPECT_EQ(Complaints(log), Lines{L"WARN The system lists no volumes: 5"});
    for (wchar_t letter = L'A'; letter <= L'Z'; ++letter)
        fake.volumes[letter] = sound;
    fake.windows = L"\\\\?\\C:";  // no letter: which volume holds Windows is not known
    EXPECT_EQ(Detect().size(), 7U + 26 * 6);
    EXPECT_EQ(session.Texts({72601, 72602, 72607, 72612}), L"26|A:||26.0 GB|");
}

TEST_F(Volumes, AgreeWithTheSystemAndLeaveTheErrorModeAsItWas)
{
    DWORD before = 0;
    SetThreadErrorMode(SEM_NOGPFAULTERRORBOX, &before);
    LogicalDrive().Detect();
    EXPECT_EQ(GetThreadErrorMode(), static_cast<DWORD>(SEM_NOGPFAULTERRORBOX));
    ULARGE_INTEGER size = {};
    GetDiskFreeSpaceExW(L"C:\\", nullptr, &size, nullptr);
    EXPECT_EQ(session.Texts({72602, 72603, 72604, 72605, 72607}),
              L"C:|fixed|NTFS|" + std::wstring(Size(size.QuadPart).ToString()) + L"|Yes|");
    try {
        const ErrorMode quiet;
        EXPECT_EQ(GetThreadErrorMode(), static_cast<DWORD>(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX));
        throw 1;
    } catch (int) {
        EXPECT_EQ(GetThreadErrorMode(), static_cast<DWORD>(SEM_NOGPFAULTERRORBOX));
    }
    SetThreadErrorMode(before, nullptr);
}

}  // namespace
}  // namespace kel
