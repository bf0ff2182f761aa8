#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "BuildSettings.h"
#include "platform/Handles.h"
#include "service/AnalysisRequest.h"
#include "service/BandwidthTest.h"
#include "service/CallBudget.h"
#include "service/HttpExchange.h"
#include "service/InternetError.h"
#include "service/PathText.h"
#include "service/Proxy.h"
#include "service/RunWithin.h"
#include "service/ServiceHost.h"
#include "service/SystemInformationRequest.h"
#include "service/Utf8.h"
#include "service/WebServiceUpload.h"
#include "support/LogCapture.h"
#include "support/Machines.h"
#include "support/ScratchKey.h"
#include "support/TestSession.h"

namespace kel {
namespace {

using namespace std::chrono_literals;

bool IsOpen(HINTERNET handle)
{
    DWORD type = 0, size = sizeof(type);
    return handle != nullptr && InternetQueryOptionW(handle, INTERNET_OPTION_HANDLE_TYPE, &type, &size);
}

/// Stays in its stage until it is ended, like a call that blocks.
struct Blocked {
    std::atomic<bool> mayEnd = false;
    std::atomic<int> running = 0, abandoned = 0;
    std::atomic<HINTERNET> handle = nullptr;

    const char* Run(const std::shared_ptr<Blocked>& self)
    {
        return RunWithin(1s, [self](InternetSession& internet) {
            ++self->running;
            self->handle = internet.Open();
            internet.Enter(ExchangeStage::Sending);
            while (!self->mayEnd)
                std::this_thread::sleep_for(1ms);
            self->abandoned += internet.IsAbandoned() && internet.Open() == nullptr;
            --self->running;
        });
    }
};

TEST(ServiceHost, IsANameThatAddsNothingToARequest)
{
    const std::wstring label(63, L'a');
    const std::pair<std::wstring, bool> rows[] = {
        {L"analysis.example", true},
        {L"localhost", true},
        {L"127.0.0.1", true},
        {label + L".b-1.C", true},
        {L"", false},
        {L"a.", false},
        {L".a", false},
        {L"a..b", false},
        {label + L"a", false},
        {label + L"." + label + L"." + label + L"." + label, false},
        {L"http://a", false},
        {L"a:80", false},
        {L"a/b", false},
        {L"a b", false},
        {L"a\r\nX: y", false},
        {L"u@a", false},
        {L"[::1]", false},
        {L"\u00E4", false},
    };
    for (const auto& [text, isHost] : rows)
        EXPECT_EQ(IsHostName(text), isHost) << text;
}

TEST(ServiceHost, IsReachedAsItsAddressSays)
{
    const std::tuple<const wchar_t*, const wchar_t*, bool> rows[] = {
        {L"https://a.example", L"a.example", true},
        {L"http://a.example", L"a.example", false},
        {L"a.example", L"a.example", KEL_SERVICE_TLS != 0},
    };
    for (const auto& [address, host, isSecure] : rows) {
        SetServiceHost(address);
        EXPECT_EQ(ServiceHost(), host) << address;
        EXPECT_EQ(IsServiceSecure(), isSecure) << address;
        EXPECT_EQ(DescribeServiceHost(), host + std::wstring(L" (command line)"));
    }
}

TEST(Exchange, KeepsItsHandlesWhenAbandonedUntilItEnds)
{
    auto blocked = std::make_shared<Blocked>();
    const std::weak_ptr<Blocked> watched = blocked;
    std::vector<std::future<const char*>> stages;
    for (int count = 0; count < 4; ++count)
        stages.push_back(std::async(std::launch::async, [&blocked] { return blocked->Run(blocked); }));
    for (std::future<const char*>& stage : stages)
        EXPECT_STREQ(stage.get(), ExchangeStage::Sending);
    EXPECT_TRUE(IsOpen(blocked->handle));  // only the exchange closes it
    EXPECT_THROW(blocked->Run(blocked), ExchangeNotStarted);
    const test::LogCapture log(LogError);
    EXPECT_EQ(RunBandwidthTest(), L"");
    EXPECT_THAT(log.Lines(), testing::ElementsAre(L"ERR Too many Internet exchanges have not ended yet."));
    blocked->mayEnd = true;
    while (blocked->running > 0)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(blocked->abandoned, 4);
    blocked.reset();
    const ULONGLONG end = GetTickCount64() + 30'000;
    while (!watched.expired() && GetTickCount64() < end)
        std::this_thread::sleep_for(1ms);
    EXPECT_TRUE(watched.expired());
    HINTERNET handle = nullptr;
    OwnedHandle thread;
    EXPECT_EQ(RunWithin(30s,
                        [&](InternetSession& internet) {
                            handle = internet.Open();
                            thread.reset(OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId()));
                        }),
              nullptr);
    EXPECT_EQ(WaitForSingleObject(thread.get(), 0), WAIT_OBJECT_0);  // its thread has ended, too
    EXPECT_NE(handle, nullptr);
    EXPECT_FALSE(IsOpen(handle));
    EXPECT_THROW(RunWithin(30s, [](InternetSession&) { throw std::length_error("x"); }), std::length_error);
}

TEST(Exchange, IsInTheStageThatWinINetReports)
{
    InternetSession session;
    const auto report = InternetSetStatusCallbackW(session.Open(), nullptr);
    const std::pair<DWORD, const char*> rows[] = {
        {INTERNET_STATUS_RESOLVING_NAME, ExchangeStage::Opening},
        {INTERNET_STATUS_SENDING_REQUEST, ExchangeStage::Sending},
        {INTERNET_STATUS_CONNECTING_TO_SERVER, ExchangeStage::Opening},  // once more, after a redirect
        {INTERNET_STATUS_REQUEST_SENT, ExchangeStage::WaitingForHeaders},
        {INTERNET_STATUS_REDIRECT, ExchangeStage::WaitingForHeaders},
    };
    for (const auto& [status, stage] : rows) {
        report(nullptr, session.Context(), status, nullptr, 0);
        EXPECT_STREQ(session.Stage(), stage) << status;
    }
}

TEST(Exchange, IsSkippedAfterOneOfTheSameCallEndedAtALimit)
{
    const test::TestSession session;
    WebServiceUpload request(L"x");
    const test::LogCapture log(LogWarning);
    {
        const CallBudget outer;
        {
            const CallBudget inner;
            CallBudget::Current().End(ExchangeStage::Reading);
        }
        request.Call();
        EXPECT_FALSE(request.HasBegun());
        EXPECT_THAT(log.Lines(),
                    testing::ElementsAre(L"WARN Skipped, since an earlier exchange of this call took "
                                         L"too long: reading"));
    }
    request.Call();
    EXPECT_TRUE(request.HasBegun());
}

TEST(Requests, EncodeControlCharactersInIdsAndFillInPlaceholders)
{
    test::TestSession session;
    session.sessionID = L"s s";
    session.referrerID = std::wstring(L"a\r\nX: 1\t\x1f \x7f\0!%?#&/\u00e9", 19);
    const std::wstring encoded = L"a%0D%0AX:%201%09%1F%20%7F%00!%?#&/\u00e9";
    EXPECT_EQ(SystemInformationRequest().Path(), L"/SystemInformation/?refid=" + encoded + L"&sessid=s%20s");
    session.userID = L"u";
    AnalysisRequest analysis;
    EXPECT_EQ(analysis.Path(), L"/service/Analysis/" + encoded);
    session.values.AddValue(71207, L"a&<b>");
    EXPECT_EQ(SystemInformationRequest().Body(),
              L"<SystemInformation><Data>&lt;groups&gt;&lt;group index=\"0\" id=\"71207\"&gt;&lt;value&gt;"
              L"a&amp;amp;&amp;lt;b&amp;gt;&lt;/value&gt;&lt;/group&gt;&lt;/groups&gt;  "
              L"</Data></SystemInformation>");
    analysis.SetItemID(L"item^message_format");
    analysis.SetMessageFormat(L"xml");
    analysis.SetFormatVersion(L"2");
    EXPECT_EQ(analysis.Body(),
              L"<System><SessionID>s s</SessionID><ItemID>itemxml</ItemID><UserID>u</UserID>"
              L"<Format>xml</Format><Schema>2</Schema></System>");
}

/// The bytes that are sent for a text in a code page.
std::string Sent(std::wstring_view text, UINT codePage)
{
    std::array<char, 16> bytes;
    const int size = WideCharToMultiByte(codePage, 0, text.data(), static_cast<int>(text.size()),
                                         bytes.data(), 16, nullptr, nullptr);
    return {bytes.data(), static_cast<std::size_t>(size)};
}

bool IsDelimiter(char byte)
{
    const auto code = static_cast<unsigned char>(byte);
    return code <= ' ' || code == 0x7F || std::string_view("%?&#/=+;").find(byte) != std::string_view::npos;
}

/// Whether a character with these bytes may be in a path as this text: unchanged, or percent-encoded.
bool IsRightIn(std::wstring_view path, wchar_t character, const std::string& bytes)
{
    if (std::ranges::none_of(bytes, &IsDelimiter))
        return path == std::wstring_view(&character, 1);
    std::wstring encoded;
    for (const char byte : bytes) {
        std::array<wchar_t, 4> code = {};
        std::swprintf(code.data(), code.size(), L"%%%02X", static_cast<unsigned char>(byte));
        encoded += code.data();
    }
    return path == encoded;
}

std::vector<UINT> codePages = {CP_UTF8};  // which the system does not list

BOOL CALLBACK AddCodePage(LPWSTR number)
{
    codePages.push_back(std::stoul(number));
    return TRUE;
}

TEST(PathText, SendsNoCharacterAsADelimiterInAnyCodePage)
{
    EnumSystemCodePagesW(&AddCodePage, CP_INSTALLED);
    // Others have no request line.
    std::erase_if(codePages, [](UINT page) { return Sent(L"GET /?%\r\n", page) != "GET /?%\r\n"; });
    EXPECT_GE(codePages.size(), 30U);
    for (const UINT codePage : codePages) {
        for (unsigned number = 0x80; number <= 0xFFFF; ++number) {
            const auto character = static_cast<wchar_t>(number);
            const std::wstring_view text(&character, 1);
            if (!IsRightIn(PathText(text, codePage), character, Sent(text, codePage)))
                FAIL() << "code page " << codePage << ", character " << number;
        }
    }
    EXPECT_EQ(PathText(L"\u266a\u25d9\u0e01", 874), L"%0D%0A\u0e01");
    EXPECT_EQ(PathText(L"\u00e9", 9999), L"%3F");  // there is no such page
    EXPECT_EQ(PathText(L"\u2003\u4e00\u00e9", 1252), L"%20%3F\u00e9");
    EXPECT_EQ(PathText(L"\u266a\u2003\xd83d\xde00", 65001), L"\u266a\u2003\xd83d\xde00");
}

TEST(Answer, CountsOnlyFromTheServicesHost)
{
    for (const wchar_t* own : {L"http://a.example/x", L"http://A.Example:80/"})
        EXPECT_TRUE(IsOfHost(own, L"a.example")) << own;
    for (const wchar_t* other : {L"", L"a.example", L"http://a.example@b.example",
                                 L"http://b.example/a.example", L"http://a.example.b.example/"})
        EXPECT_FALSE(IsOfHost(other, L"a.example")) << other;
    EXPECT_TRUE(IsOfHost(L"https://a.example/x", L"a.example", true));
    EXPECT_FALSE(IsOfHost(L"http://a.example/x", L"a.example", true)) << "a redirect to plain HTTP";
}

TEST(Answer, ShowsWhoAnsweredAndWhetherItIsWhole)
{
    const std::string xml = "<analysis result=\"pass\"><title>T</title></analysis>",
                      page = "<!DOCTYPE html>\n<html>", verdict = page + "<p class=\"total pass\"></html>\n";
    const struct {
        const char* name;
        const wchar_t* status;
        std::string body;
        const wchar_t* state;
    } rows[] = {
        {"a verdict", L"200", xml, ExchangeState::Answered},
        {"as JSON", L"200", "{\"result\":\"pass\"}", ExchangeState::Answered},
        {"as a page", L"200", verdict, ExchangeState::Answered},
        {"half a verdict", L"200", xml.substr(0, 40), ExchangeState::Cut},
        {"half a page", L"200", verdict.substr(0, 50), ExchangeState::Cut},
        {"half of JSON", L"200", "{\"result\":", ExchangeState::Cut},
        {"another page", L"200", "\n" + page + "</html>", ExchangeState::OtherHost},
        {"a proxy's error", L"502", "<h1>Bad Gateway</h1>", ExchangeState::OtherHost},
        {"a proxy's log-in", L"407", "", ExchangeState::OtherHost},
        {"no such product", L"404", "the referrer is not known", ExchangeState::UnknownProduct},
        {"none in a group list", L"404", "", ExchangeState::UnknownProduct},
        {"no report", L"404", "no report of this session was uploaded", ExchangeState::Answered},
        {"too busy", L"503", "busy", ExchangeState::Answered},
    };
    for (const auto& row : rows) {
        HttpAnswer answer;
        answer.status = row.status;
        answer.body = row.body;
        EXPECT_STREQ(ExchangeState::Of(answer, FormOfVerdict(row.body)), row.state) << row.name;
    }
    EXPECT_STREQ(ExchangeState::Of(HttpAnswer(), AnswerForm::Own),
                 ExchangeState::Cut);  // before its first line
    EXPECT_EQ(FormOfText("71063|71094"), AnswerForm::Own);
    EXPECT_EQ(FormOfText(xml), AnswerForm::Foreign);
}

TEST(InternetError, NamesTheDocumentedErrors)
{
    const test::Lines rows = test::ReadRows("internet_errors.txt");
    EXPECT_GE(rows.size(), 27U);
    for (const std::wstring& row : rows)
        EXPECT_EQ(InternetErrorText(std::stoul(row)), row.substr(row.find(L';') + 1)) << row;
    EXPECT_EQ(InternetErrorText(ERROR_SUCCESS), L"");
}

TEST(Utf8, ReplacesMalformedBytesAndKeepsZeros)
{
    EXPECT_EQ(ToUtf8(L"\u20ac\xd83d\xde00 \xd83d"), "\xe2\x82\xac\xf0\x9f\x98\x80 \xef\xbf\xbd");
    EXPECT_EQ(FromUtf8("\xe2\x82\xac\xf0\x9f\x98\x80\xff!"), L"\u20ac\xd83d\xde00\ufffd!");
    EXPECT_EQ(ToUtf8(L"").size() + FromUtf8("").size() + FromUtf8(std::string_view("a\0b", 3)).size(), 3U);
}

TEST(Proxy, IsTheOneOfTheUsersSettings)
{
    struct Settings {
        const char* name;
        DWORD isOn;
        const wchar_t* script;
        const wchar_t* expected;
    };
    constexpr Settings Users[] = {
        {"a proxy", 1, L"", L"proxy.example:8080"},
        {"a proxy and a script", 1, L"http://pac.example/p.pac", L"by the script http://pac.example/p.pac"},
        {"a proxy that is switched off", 0, L"", L"127.0.0.1:9"},  // the environment's
    };
    for (const Settings& user : Users) {
        const test::ScratchKey key(HKEY_CURRENT_USER);
        const std::wstring settings = L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
        key.Write(settings, L"ProxyEnable", REG_DWORD, &user.isOn, sizeof(user.isOn));
        key.Write(settings, L"ProxyServer", L"proxy.example:8080");
        key.Write(settings, L"AutoConfigURL", user.script);
        EXPECT_EQ(DescribeProxy(), user.expected) << user.name;
    }
}

}  // namespace
}  // namespace kel
