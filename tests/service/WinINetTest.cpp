// Exchanges with a WinINet for which the test answers.
#include <gmock/gmock.h>

#include <sstream>

#include "BuildSettings.h"
#include "diag/SourceFailures.h"
#include "service/AnalysisRequest.h"
#include "service/BandwidthTest.h"
#include "service/GroupListRequest.h"
#include "service/ServiceHost.h"
#include "service/WebServiceUpload.h"
#include "support/LogCapture.h"
#include "support/Machines.h"
#include "support/ReplacedImport.h"
#include "support/Split.h"
#include "support/TestSession.h"

#define KEL_IMPORT(name) extern "C" decltype(&name) __imp_##name
KEL_IMPORT(InternetOpenW);
KEL_IMPORT(InternetConnectW);
KEL_IMPORT(HttpOpenRequestW);
KEL_IMPORT(InternetOpenUrlW);
KEL_IMPORT(InternetSetOptionW);
KEL_IMPORT(HttpSendRequestW);
KEL_IMPORT(InternetCloseHandle);
KEL_IMPORT(InternetQueryOptionW);
KEL_IMPORT(HttpQueryInfoW);
KEL_IMPORT(InternetQueryDataAvailable);
KEL_IMPORT(InternetReadFile);

namespace kel {
namespace {

using Texts = std::vector<std::string>;

struct Answer {
    std::wstring address;
    std::string body = {};
    std::wstring status = L"200";
    DWORD sendError = ERROR_SUCCESS;
    DWORD announced = 0;  // the body's length; 0 when the headers do not say it
    INT_PTR refused = 0;  // the handle that is not opened, or Reading; with the error of sending
    std::size_t given = 0;
} answer;
constexpr INT_PTR Reading = 4;
Texts calls;

std::string Show(std::wstring_view text)
{
    return {text.begin(), text.end()};
}

/// Notes a call, numbers in hexadecimal, and returns a handle.
template <typename... Parts>
HINTERNET Note(INT_PTR handle, const Parts&... parts)
{
    const auto show = [](const auto& part) {
        using Part = std::decay_t<decltype(part)>;
        if constexpr (std::is_same_v<Part, HINTERNET>)
            return reinterpret_cast<INT_PTR>(part);
        else if constexpr (std::is_convertible_v<Part, LPCWSTR>)
            return part != nullptr ? Show(part) : "null";
        else
            return part;
    };
    std::ostringstream line;
    line << std::hex;
    ((line << show(parts) << ' '), ...);
    calls.push_back(line.str());
    SetLastError(answer.sendError);
    return reinterpret_cast<HINTERNET>(handle == answer.refused ? 0 : handle);
}

BOOL Give(const std::wstring& text, LPVOID buffer, LPDWORD size)
{
    const auto needed = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    const bool fits = buffer != nullptr && *size >= needed;
    if (fits)
        std::copy_n(text.c_str(), text.size() + 1, static_cast<wchar_t*>(buffer));
    *size = needed;
    return fits;
}

struct WinINet : testing::Test {
    test::TestSession session;
    const std::shared_ptr<void> replaced[11] = {
        test::ReplaceImport(__imp_InternetOpenW,
                            [](LPCWSTR agent, DWORD type, LPCWSTR proxy, LPCWSTR, DWORD flags) {
                                return Note(1, "open", agent, type, proxy, flags);
                            }),
        test::ReplaceImport(__imp_InternetConnectW,
                            [](HINTERNET of, LPCWSTR host, INTERNET_PORT port, LPCWSTR user, LPCWSTR word,
                               DWORD service, DWORD flags, DWORD_PTR) {
                                return Note(2, "connect", of, host, port, user, word, service, flags);
                            }),
        test::ReplaceImport(__imp_HttpOpenRequestW,
                            [](HINTERNET of, LPCWSTR verb, LPCWSTR path, LPCWSTR version, LPCWSTR referrer,
                               LPCWSTR* types, DWORD flags, DWORD_PTR context) {
                                return Note(3, "request", of, verb, path, version, referrer, types[0],
                                            types[1], flags, context != 0);
                            }),
        test::ReplaceImport(
            __imp_InternetOpenUrlW,
            [](HINTERNET of, LPCWSTR address, LPCWSTR headers, DWORD, DWORD flags, DWORD_PTR context) {
                return Note(3, "url", of, address, headers, flags, context != 0);
            }),
        test::ReplaceImport(__imp_InternetSetOptionW,
                            [](HINTERNET of, DWORD number, LPVOID value, DWORD size) {
                                Note(0, "option", of, number, size == 4 ? *static_cast<DWORD*>(value) : size);
                                return TRUE;
                            }),
        test::ReplaceImport(__imp_HttpSendRequestW,
                            [](HINTERNET of, LPCWSTR headers, DWORD length, LPVOID body, DWORD size) {
                                Note(0, "send", of, headers, length,
                                     std::string(static_cast<char*>(body), size));
                                SetLastError(answer.sendError);
                                return BOOL(answer.sendError == ERROR_SUCCESS);
                            }),
        test::ReplaceImport(__imp_InternetCloseHandle,
                            [](HINTERNET handle) {
                                Note(0, "close", handle);
                                return TRUE;
                            }),
        test::ReplaceImport(__imp_InternetQueryOptionW,
                            [](HINTERNET, DWORD number, LPVOID buffer, LPDWORD size) {
                                return number == INTERNET_OPTION_URL ? Give(answer.address, buffer, size)
                                                                     : FALSE;
                            }),
        test::ReplaceImport(__imp_HttpQueryInfoW,
                            [](HINTERNET, DWORD what, LPVOID buffer, LPDWORD size, LPDWORD) {
                                if (what == (HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER))
                                    return BOOL((*static_cast<DWORD*>(buffer) = answer.announced) != 0);
                                return BOOL(!answer.status.empty() &&
                                            Give(what == HTTP_QUERY_STATUS_CODE ? answer.status : L"text",
                                                 buffer, size));
                            }),
        test::ReplaceImport(__imp_InternetQueryDataAvailable,
                            [](HINTERNET, LPDWORD count, DWORD, DWORD_PTR) {
                                *count = static_cast<DWORD>(answer.body.size() - answer.given);
                                return TRUE;
                            }),
        test::ReplaceImport(__imp_InternetReadFile, [](HINTERNET, LPVOID buffer, DWORD size, LPDWORD count) {
            *count = static_cast<DWORD>(answer.body.copy(static_cast<char*>(buffer), size, answer.given));
            answer.given += *count;
            return BOOL(answer.refused != Reading);
        })};

    /// Runs a request to a host, and returns its log without times, its result and its state.
    template <typename Request>
    test::Lines Run(Request&& request, Answer newAnswer)
    {
        calls.clear();
        answer = std::move(newAnswer);
        const test::LogCapture log;
        request.Call();
        test::Lines lines = log.Lines();
        for (std::wstring& line : lines)
            line.erase(std::min(line.find(L"milliseconds: "), line.size()));
        lines.push_back(L"= " + request.GetResult());
        return lines;
    }
};

TEST_F(WinINet, IsAskedForTheGroupList)
{
    SetServiceHost(L"http://a.example");
    EXPECT_EQ(Run(GroupListRequest(), {L"http://a.example/x", "71063|71094"}),
              (test::Lines{
                  L"MARK Entering: kel::WebService::Call",
                  L"TRACE Request: GET a.example/Data/Service.svc/Group/list?refid=referrer, proxy unknown",
                  L"TRACE Elapsed ", L"TRACE Status: 200 text", L"TRACE Result: 71063|71094",
                  L"TRACE Successfully sent data.", L"TRACE Adding value: answered to 73390",
                  L"MARK Exiting: kel::WebService::Call", L"= 71063|71094"}));
    EXPECT_EQ(calls, (Texts{"open KEL 0 null 0 ", "connect 1 a.example 50   3 40000 ",
                            "request 2 GET /Data/Service.svc/Group/list?refid=referrer&apikey="
                            "5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53 HTTP/1.1 null text/* null a4400000 1 ",
                            "option 3 2 7530 ", "option 3 5 7530 ", "option 3 6 7530 ", "option 3 68 0 ",
                            "send 3 null 0  ", "close 3 ", "close 2 ", "close 1 "}));
}

TEST_F(WinINet, SendsReportsByHttps)
{
    SetServiceHost(L"https://a.example");
    EXPECT_EQ(Run(WebServiceUpload(L"\u20ac"), {L"https://a.example/", "done", L"400"}),
              (test::Lines{L"MARK Entering: kel::WebService::Call",
                           L"TRACE Request: POST https://a.example/Data/Service.svc/upload, proxy unknown",
                           L"MARK Header: Content-Type = application/xml; charset=utf-8",
                           L"MARK Header: Content-Length = 3", L"TRACE Elapsed ", L"WARN Status: 400 text",
                           L"TRACE Result: done", L"TRACE Successfully sent data.",
                           L"TRACE Adding value: answered to 73390", L"MARK Exiting: kel::WebService::Call",
                           L"= done"}));
    ASSERT_EQ(calls.size(), 11U);
    EXPECT_EQ(calls[1], "connect 1 a.example 1bb   3 40000 ");
    EXPECT_EQ(calls[2],
              "request 2 POST /Data/Service.svc/upload?apikey=5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53 "
              "HTTP/1.1 null text/* null a4e00000 1 ");
    EXPECT_EQ(calls[7],
              "send 3 Content-Type: application/xml; charset=utf-8\n\rContent-Length: 3 3f "
              "\xe2\x82\xac ");
}

TEST_F(WinINet, FailuresAreLogged)
{
    SetServiceHost(L"https://a.example");
    const std::string verdict = "<analysis ></analysis>";
    const std::wstring failed =
        L"ERR The request has failed: POST https://a.example/service/Analysis/referrer, proxy unknown: ";
    const std::wstring offline = failed + L"not reached: 12163, the machine has no connection to a network";
    const std::wstring offlineState = L"TRACE Adding value: not reached: 12163 to 73390";
    const std::pair<Answer, test::Lines> rows[] = {
        {{L"https://b.example/", verdict},
         {L"TRACE Elapsed ", L"TRACE Status: 200 text", failed + L"another host answered",
          L"ERR The answer came from another host than the service's.",
          L"TRACE Adding value: another host answered to 73390"}},
        {{L"https://a.example/", "", L"399"},
         {L"TRACE Elapsed ", L"TRACE Status: 399 text", failed + L"another host answered",
          L"ERR The service redirected the request.", L"TRACE Adding value: another host answered to 73390"}},
        {{L"https://a.example/", "", L"", ERROR_INTERNET_CANNOT_CONNECT},
         {L"ERR Can't send Internet request. Error: 12029",
          failed + L"not reached: 12029, the host does not accept a connection",
          L"ERR Can't send Internet request.", L"TRACE Adding value: not reached: 12029 to 73390"}},
        {{L"https://a.example/", "", L"", ERROR_INTERNET_TIMEOUT},
         {L"ERR The service took too long to answer: opening",
          L"ERR Can't send Internet request. Error: 12002",
          failed + L"not reached: 12002, the host took too long", L"ERR Can't send Internet request.",
          L"TRACE Adding value: not reached: 12002 to 73390"}},
        {{L"", "", L"", ERROR_INTERNET_DISCONNECTED, 0, 1},
         {offline, L"ERR Can't open Internet.", offlineState}},
        {{L"", "", L"", ERROR_INTERNET_DISCONNECTED, 0, 2},
         {offline, L"ERR Can't open Internet connection.", offlineState}},
        {{L"", "", L"", ERROR_INTERNET_DISCONNECTED, 0, 3},
         {offline, L"ERR Can't open Internet request.", offlineState}},
        {{L"https://a.example/", "1", L"200", 0, 0, Reading},
         {L"TRACE Elapsed ", L"TRACE Status: 200 text", L"TRACE Result: ", L"TRACE Successfully sent data.",
          L"TRACE Adding value: cut to 73390"}},
        {{L"https://a.example/", std::string((16U << 20) + 1, 'a')},
         {L"TRACE Elapsed ", L"TRACE Status: 200 text", failed + L"cut",
          L"ERR The service's answer is too long.", L"TRACE Adding value: cut to 73390"}},
        {{L"https://a.example/", verdict, L""},
         {L"TRACE Elapsed ", L"WARN Can't get status.", L"WARN Can't get data.", L"TRACE Status:  ",
          L"TRACE Result: <analysis ></analysis>", L"TRACE Successfully sent data.",
          L"TRACE Adding value: cut to 73390"}},
        {{L"https://a.example/", verdict, L"200", ERROR_SUCCESS, 23},
         {L"TRACE Elapsed ", L"TRACE Status: 200 text", L"TRACE Result: <analysis ></analysis>",
          L"TRACE Successfully sent data.", L"TRACE Adding value: cut to 73390"}},
    };
    for (const auto& [row, expected] : rows) {
        const test::Lines lines = Run(AnalysisRequest(), row);
        EXPECT_EQ(test::Lines(lines.begin() + 4, lines.end() - 2), expected);
    }
}

TEST_F(WinINet, IsAskedForTheTestFile)
{
    const std::tuple<Answer, const wchar_t*, std::uint32_t> rows[] = {
        {{L"", "12345678", L"200", 0, 8}, L"TRACE downloadRate = ", 0},
        {{L"", "12345678", L"200", 0, 9}, L"= ", 0},
        {{L"", "12345678", L"200", 5, 8, 1}, L"= ", 0},
        {{L"", "12345678", L"200", 5, 8, 3}, L"= ", 0},
        {{L"", "12345678", L"200", 0, 8, Reading}, L"= ", 0},
        {{L"", "12345678", L"", 0, 8}, L"WARN The bandwidth test has failed. Status: unknown", 0},
        {{L"", "12345678", L"404", 0, 8}, L"WARN The bandwidth test has failed. Status: 404", 404},
    };
    for (const auto& [row, line, error] : rows) {
        const test::LogCapture log;
        const FailureScope scope;
        calls.clear();
        answer = row;
        const std::wstring rate = RunBandwidthTest();
        test::Lines lines = log.Lines();
        lines.push_back(L"= " + rate);
        EXPECT_THAT(lines.front(), testing::StartsWith(line));
        EXPECT_EQ(rate.ends_with(L" bps"), scope.Found().AreNone()) << rate;
        for (const SourceFailure& failure : scope.Found().sources) {
            EXPECT_EQ(failure.source, L"download of the test file");
            EXPECT_EQ(failure.error, error) << line;
        }
    }
    EXPECT_EQ(calls, (Texts{"open KEL 0 null 0 ", "option 1 2 2710 ", "option 1 5 2710 ", "option 1 6 2710 ",
                            "url 1 " + Show(L"http://" KEL_CONTENT_HOST L"/global/tests/test_2.bin") +
                                " null 84000100 1 ",
                            "close 3 ", "close 1 "}));
}

}  // namespace
}  // namespace kel
