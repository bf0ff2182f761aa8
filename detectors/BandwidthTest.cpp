#include "detectors/BandwidthTest.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <vector>

#include "BuildSettings.h"
#include "diag/Log.h"
#include "diag/Owners.h"
#include "diag/Timer.h"
#include "service/LimitedInternet.h"

namespace kel {

namespace {

constexpr const wchar_t* Agent = L"KEL";
constexpr const wchar_t* TestFile = L"http://" KEL_CONTENT_HOST L"/global/tests/test_2.bin";
/// Kept in reserve, should the first host be given up.
[[maybe_unused]] constexpr const wchar_t* SecondTestFile =
    L"http://" KEL_CONTENT_HOST_2 L"/global/tests/test_1.bin";
constexpr DWORD OpenFlags =
    INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_PRAGMA_NOCACHE;
static_assert(OpenFlags == 0x84000100);
constexpr std::size_t BufferSize = 5001;
constexpr DWORD LongestRead = 5000;

/// What a test may take of the page that waits for it; the file takes less on any connection worth measuring.
constexpr std::chrono::seconds TimeLimit{30};
constexpr DWORD WaitLimit = 10000;  // milliseconds, of each single wait

std::int64_t ReadCounter()
{
    LARGE_INTEGER reading = {};
    return QueryPerformanceCounter(&reading) ? reading.QuadPart : 0;
}

/// A download that was cut short looks like one that ended, but for its announced length.
bool IsWhole(HINTERNET file, std::uint64_t total)
{
    DWORD length = 0;
    DWORD size = sizeof(length);
    return !HttpQueryInfoW(file, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &length, &size,
                           nullptr) ||
           total == length;
}

/// The bytes of the whole file; nothing when it could not be read to its end in time.
std::optional<std::uint64_t> Download(const LimitedInternet& file)
{
    std::vector<char> buffer(BufferSize);
    std::uint64_t total = 0;
    DWORD available = 0;
    while (!file.IsExpired() && InternetQueryDataAvailable(file.Get(), &available, 0, 0)) {
        DWORD count = 0;
        if (!InternetReadFile(file.Get(), buffer.data(), std::min(available, LongestRead), &count))
            break;
        total += count;
        if (count == 0)
            return IsWhole(file.Get(), total) ? std::optional(total) : std::nullopt;
    }
    if (file.IsExpired())
        WriteLog(LogWarning, L"The bandwidth test was stopped after ", TimeLimit.count(), L" seconds.");
    return {};
}

/// The rate of one download; empty when it failed.
std::wstring Measure()
{
    const OwnedInternet session(InternetOpenW(Agent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (!session)
        return {};
    for (const DWORD option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT}) {
        DWORD milliseconds = WaitLimit;
        InternetSetOptionW(session.get(), option, &milliseconds, sizeof(milliseconds));
    }
    const HINTERNET opened = InternetOpenUrlW(session.get(), TestFile, nullptr, 0, OpenFlags, 0);
    if (opened == nullptr)
        return {};
    const LimitedInternet file(opened, TimeLimit);
    const std::int64_t start = ReadCounter();
    const std::optional<std::uint64_t> bytes = Download(file);
    const std::int64_t stop = ReadCounter();
    LARGE_INTEGER frequency = {};
    QueryPerformanceFrequency(&frequency);
    if (!bytes || frequency.QuadPart <= 0 || start <= 0 || stop <= start)
        return {};
    return DownloadRate(*bytes, Timer::ElapsedMilliseconds(start, stop, frequency.QuadPart));
}

}  // namespace

std::wstring DownloadRate(std::uint64_t bytes, std::int64_t milliseconds)
{
    return std::to_wstring(bytes * 8000 /
                           static_cast<std::uint64_t>(std::max<std::int64_t>(milliseconds, 1))) +
           L" bps";
}

const std::wstring& RunBandwidthTest()
{
    static std::wstring result;
    result.clear();
    result = Measure();
    if (!result.empty())
        WriteLog(LogTrace, L"downloadRate = ", result);
    return result;
}

}  // namespace kel
