#include "service/BandwidthTest.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <vector>

#include "BuildSettings.h"
#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "diag/Timer.h"
#include "service/ExchangeLimits.h"
#include "service/RunWithin.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr const wchar_t* TestFile = L"http://" KEL_CONTENT_HOST L"/global/tests/test_2.bin";
/// A spare path, in case the first host is given up.
[[maybe_unused]] constexpr const wchar_t* SecondTestFile =
    L"http://content2.keldane.example/global/tests/test_1.bin";
constexpr DWORD OpenFlags =
    INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_PRAGMA_NOCACHE;
static_assert(OpenFlags == 0x84000100);
constexpr std::size_t BufferSize = 5001;
constexpr DWORD MaxReadSize = 5000;
constexpr const wchar_t* Success = L"200";

/// Filled by the exchange's thread. At the time limit the waiting thread uses what is there.
struct Download {
    std::wstring status;
    bool isWhole = false;
    std::atomic<std::uint64_t> bytes = 0;
    std::atomic<std::int64_t> start = 0;
    std::int64_t stop = 0;
};

/// Reads to the end; false when a read fails.
bool ReadAll(HINTERNET file, const InternetSession& internet, std::vector<char>& buffer, Download& download)
{
    DWORD available = 0;
    while (InternetQueryDataAvailable(file, &available, 0, 0) && !internet.IsAbandoned()) {
        DWORD count = 0;
        if (!InternetReadFile(file, buffer.data(), std::min(available, MaxReadSize), &count) ||
            internet.IsAbandoned())
            return false;
        download.bytes += count;
        if (count == 0)
            return true;
    }
    return false;
}

void Fetch(InternetSession& internet, Download& download)
{
    const HINTERNET session = internet.Open();
    if (session == nullptr)
        return;
    internet.LimitWaits(session, ExchangeLimits::DownloadWait);
    const HINTERNET file =
        internet.Keep(InternetOpenUrlW(session, TestFile, nullptr, 0, OpenFlags, internet.Context()));
    if (file == nullptr)
        return;
    download.status = InternetSession::QueryInfo(file, HTTP_QUERY_STATUS_CODE).value_or(L"unknown");
    if (download.status != Success)
        return;
    std::vector<char> buffer(BufferSize);
    download.start = Timer::ReadCounter();
    const bool isRead = ReadAll(file, internet, buffer, download);
    download.stop = Timer::ReadCounter();
    download.isWhole = isRead && InternetSession::IsWhole(file, download.bytes);
}

/// The rate of one download; empty when it failed.
std::wstring Measure()
{
    const auto download = std::make_shared<Download>();
    const char* const late = RunWithin(ExchangeLimits::Download,
                                       [download](InternetSession& internet) { Fetch(internet, *download); });
    if (late != nullptr) {
        const std::uint64_t bytes = download->bytes;
        WriteLog(LogWarning, L"The bandwidth test was stopped after ", ExchangeLimits::Download.count(),
                 L" seconds. Bytes that came so far and count: ", bytes);
        FailureScope::Note(L"download of the test file", ERROR_TIMEOUT);
        return bytes == 0 ? std::wstring()
                          : DownloadRate(bytes, download->start, Timer::ReadCounter(), Timer::Frequency());
    }
    if (!download->status.empty() && download->status != Success)
        WriteLog(LogWarning, L"The bandwidth test has failed. Status: ", download->status);
    if (!download->isWhole) {
        FailureScope::Note(L"download of the test file",
                           download->status == Success ? ERROR_SUCCESS : ToUnsigned(download->status));
        return {};
    }
    return DownloadRate(download->bytes, download->start, download->stop, Timer::Frequency());
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
