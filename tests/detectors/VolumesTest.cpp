#include <gtest/gtest.h>

#include "detectors/Detectors.h"
#include "platform/ErrorMode.h"
#include "support/TestSession.h"
#include "values/Size.h"

namespace kel {
namespace {

TEST(Volumes, AgreeWithTheSystemAndLeaveTheErrorModeAsItWas)
{
    const test::TestSession session;
    DWORD before = 0;
    SetThreadErrorMode(SEM_NOGPFAULTERRORBOX, &before);
    LogicalDrive().Detect();
    EXPECT_EQ(GetThreadErrorMode(), static_cast<DWORD>(SEM_NOGPFAULTERRORBOX));
    ULARGE_INTEGER size = {}, free = {};
    GetDiskFreeSpaceExW(L"C:\\", &free, &size, nullptr);
    const std::wstring total = Size(size.QuadPart).ToString(), left = Size(free.QuadPart).ToString();
    EXPECT_EQ(session.Texts({72602, 72603, 72604, 72605, 72606, 72607}),
              L"C:|fixed|NTFS|" + total + L"|" + left + L"|Yes|");
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
