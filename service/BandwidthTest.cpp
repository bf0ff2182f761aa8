#include "service/BandwidthTest.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <memory>
#include <vector>

#include "BuildSettings.h"
#include "diag/Log.h"
#include "diag/Timer.h"
#include "service/LimitedExchange.h"

namespace kel {

namespace {

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
constexpr std::chrono::seconds WaitLimit{10};  // of each single wait

/// A download that was cut short looks like one that ended, but for its announced length.
bool IsWhole(HINTERNET file, std::uint64_t total)
{
    DWORD length = 0;
    DWORD size = sizeof(length);
    return !HttpQueryInfoW(file, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &length, &size,
                           nullptr) ||
           total == length;
}

struct Download {
    bool isWhole = false;
    std::uint64_t bytes = 0;
    std::int64_t start = 0;
    std::int64_t stop = 0;
};

/// Reads until there is nothing left; whether that worked.
bool ReadAll(HINTERNET file, const InternetHandles& handles, std::vector<char>& buffer, std::uint64_t& total)
{
    DWORD available = 0;
    while (InternetQueryDataAvailable(file, &available, 0, 0) && !handles.AreClosed()) {
        DWORD count = 0;
        if (!InternetReadFile(file, buffer.data(), std::min(available, LongestRead), &count) ||
            handles.AreClosed())
            return false;
        total += count;
        if (count == 0)
            return true;
    }
    return false;
}

void Fetch(InternetHandles& handles, Download& download)
{
    const HINTERNET session = handles.OpenSession();
    if (session == nullptr)
        return;
    InternetHandles::LimitWaits(session, WaitLimit);
    const HINTERNET file =
        handles.Keep(InternetOpenUrlW(session, TestFile, nullptr, 0, OpenFlags, handles.Context()));
    if (file == nullptr)
        return;
    std::vector<char> buffer(BufferSize);
    download.start = Timer::ReadCounter();
    const bool isRead = ReadAll(file, handles, buffer, download.bytes);
    download.stop = Timer::ReadCounter();
    download.isWhole = isRead && IsWhole(file, download.bytes);
}

/// The rate of one download; empty when it failed.
std::wstring Measure()
{
    const auto download = std::make_shared<Download>();
    if (!RunWithin(TimeLimit, [download](InternetHandles& handles) { Fetch(handles, *download); })) {
        WriteLog(LogWarning, L"The bandwidth test was stopped after ", TimeLimit.count(), L" seconds.");
        return {};
    }
    LARGE_INTEGER frequency = {};
    QueryPerformanceFrequency(&frequency);
    if (!download->isWhole)
        return {};
    return DownloadRate(download->bytes, download->start, download->stop, frequency.QuadPart);
}

}  // namespace

std::wstring DownloadRate(std::uint64_t bytes, std::int64_t start, std::int64_t stop, std::int64_t frequency)
{
    if (frequency <= 0 || start <= 0 || stop <= start)
        return {};
    const std::int64_t milliseconds = Timer::ElapsedMilliseconds(start, stop, frequency);
    return std::to_wstring(bytes * 8000 /
                           static_cast<std::uint64_t>(std::max<std::int64_t>(milliseconds, 1))) +
           L" bps";
}

const std::wstring& RunBandwidthTest()
{
    static std::wstring result;
    result.clear();
    try {
        result = Measure();
    } catch (const std::exception& error) {
        ReportFailure(LogError, error.what());
    }
    if (!result.empty())
        WriteLog(LogTrace, L"downloadRate = ", result);
    return result;
}

}  // namespace kel
