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
    Detect();
    EXPECT_EQ(session.Texts({72600, 72601, 72612, 72608, 72609, 72610, 72611}), L"Yes|2|50.0 GB|2|1|1|1|");
    const wchar_t* expected[] = {
        L"D:|fixed|ReFS|200.0 GB|30.0 GB|Yes",
        L"C:|fixed|NTFS|100.0 GB|20.0 GB|No",
        L"F:|fixed|NTFS|100.0 GB|20.0 GB|No",
        L"R:|RAM|FAT32|1.0 GB|1.0 GB|No",
        L"A:|removable||||No",
        L"U:|removable||||No",
        L"E:|optical||||No",
        L"X:|remote||||No",
        L"Y:|remote||||No",
        L"N:|||||No",
    };
    for (int index = 0; index < 10; ++index)
        EXPECT_EQ(session.At(index, {72602, 72603, 72604, 72605, 72606, 72607}), expected[index]);
    EXPECT_EQ(fake.opened, L"CCDDFFRR");
}

TEST_F(Volumes, GiveWhatTheyTellWhenOneFails)
{
    const FakeVolume sound = {DRIVE_FIXED, L"NTFS", 2 * Gigabyte, Gigabyte};
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
        EXPECT_EQ(session.At(0, {72604, 72605, 72606}), L"NTFS|2.0 GB|1.0 GB") << row.what;
        EXPECT_EQ(session.At(1, {72604, 72605, 72606}), row.told) << row.what;
        EXPECT_EQ(Complaints(log), row.complaint != nullptr ? Lines{row.complaint} : Lines()) << row.what;
        EXPECT_EQ(session.Text(72601), row.volume.target.size() > 99 ? L"1" : L"2") << row.what;
    }
    fake.volumes.clear();
    const LogCapture log(2);
    EXPECT_EQ(Detect().size(), 13U);
    EXPECT_EQ(session.Texts({72600, 72601, 72612, 72608, 72611}) + session.At(0, {72602, 72605, 72607}),
              L"No|0||0|0|||");
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
