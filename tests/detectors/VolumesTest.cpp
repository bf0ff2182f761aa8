#include <gtest/gtest.h>

#include "detectors/Detectors.h"
#include "platform/ErrorMode.h"
#include "probes/storage/Volumes.h"
#include "support/RequireWine.h"
#include "support/TestSession.h"
#include "values/Size.h"

namespace kel {
namespace {

TEST(Volumes, AgreeWithTheSystemAndRestoreTheErrorMode)
{
    test::RequireWine();
    ASSERT_TRUE(SetVolumeLabelW(L"C:\\", L"SERIAL-4711"));
    const test::TestSession session;
    DWORD before = 0;
    SetThreadErrorMode(SEM_NOGPFAULTERRORBOX, &before);
    LogicalDrive().Detect();
    SetVolumeLabelW(L"C:\\", L"");
    EXPECT_EQ(GetThreadErrorMode(), static_cast<DWORD>(SEM_NOGPFAULTERRORBOX));
    ULARGE_INTEGER size = {}, free = {};
    GetDiskFreeSpaceExW(L"C:\\", &free, &size, nullptr);
    const std::wstring total = Size(size.QuadPart).ToString(), left = Size(free.QuadPart).ToString();
    EXPECT_EQ(session.Texts({72602, 72603, 72604, 72605, 72606, 72607, 73500}),
              L"C:|fixed|NTFS|" + total + L"|" + left + L"|Yes|" + left + L"|");
    for (const SystemValue& value : session.values)
        EXPECT_EQ(value.Text().find(L"4711"), std::wstring::npos) << value.Text();
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
