#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

#include "service/AnalysisRequest.h"
#include "service/BandwidthTest.h"
#include "service/CallBudget.h"
#include "service/RunWithin.h"
#include "service/SystemInformationRequest.h"
#include "service/Utf8.h"
#include "service/WebServiceUpload.h"
#include "support/LogCapture.h"
#include "support/TestSession.h"

namespace kel {
namespace {

using namespace std::chrono_literals;

bool IsOpen(HINTERNET handle)
{
    DWORD type = 0, size = sizeof(type);
    return handle != nullptr && InternetQueryOptionW(handle, INTERNET_OPTION_HANDLE_TYPE, &type, &size);
}

/// Stays in its stage until it is told to end, like a call that blocks.
struct Blocked {
    std::atomic<bool> mayEnd = false;
    std::atomic<int> running = 0, told = 0;
    std::atomic<HINTERNET> handle = nullptr;

    const char* Run(const std::shared_ptr<Blocked>& self)
    {
        return RunWithin(20ms, [self](InternetSession& internet) {
            ++self->running;
            self->handle = internet.Open();
            internet.Enter(ExchangeStage::Sending);
            while (!self->mayEnd)
                std::this_thread::sleep_for(1ms);
            self->told += internet.IsAbandoned() && internet.Open() == nullptr;
            --self->running;
        });
    }
};

TEST(Exchange, IsLeftToItselfWithItsHandlesUntilItEnds)
{
    auto blocked = std::make_shared<Blocked>();
    const std::weak_ptr<Blocked> watched = blocked;
    for (int count = 0; count < 4; ++count)
        EXPECT_STREQ(blocked->Run(blocked), ExchangeStage::Sending);
    EXPECT_TRUE(IsOpen(blocked->handle));  // nobody but the exchange closes it
    EXPECT_THROW(blocked->Run(blocked), std::runtime_error);
    const test::LogCapture log(LogError);
    EXPECT_EQ(RunBandwidthTest(), L"");
    EXPECT_THAT(log.Lines(), testing::ElementsAre(L"ERR Too many Internet exchanges have not ended yet."));
    blocked->mayEnd = true;
    while (blocked->running > 0)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(blocked->told, 4);
    blocked.reset();
    for (int milliseconds = 0; milliseconds < 5000 && !watched.expired(); ++milliseconds)
        std::this_thread::sleep_for(1ms);
    EXPECT_TRUE(watched.expired());
    HINTERNET handle = nullptr;
    EXPECT_EQ(RunWithin(5s, [&handle](InternetSession& internet) { handle = internet.Open(); }), nullptr);
    EXPECT_TRUE(handle != nullptr && !IsOpen(handle));
    EXPECT_THROW(RunWithin(5s, [](InternetSession&) { throw std::length_error("x"); }), std::length_error);
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
    WebServiceUpload request(L"x");
    const test::LogCapture log(LogWarning);
    {
        const CallBudget outer;
        {
            const CallBudget inner;
            CallBudget::Current().End(ExchangeStage::Reading);
        }
        request.Call();
        EXPECT_TRUE(request.IsSkipped());
        EXPECT_THAT(log.Lines(),
                    testing::ElementsAre(L"WARN Skipped, since an earlier exchange of this call took "
                                         L"too long: reading"));
    }
    request.Call();
    EXPECT_FALSE(request.IsSkipped());
}

TEST(Requests, EncodeControlCharactersAndBlanksOfIdsOnlyAndFillInPlaceholdersOfTexts)
{
    test::TestSession session;
    session.sessionID = L"s s";
    session.referrerID = std::wstring(L"a\r\nX: 1\t\x1f \x7f\0!%?#&/\u00e9", 19);
    const std::wstring encoded = L"a%0D%0AX:%201%09%1F%20%7F%00!%?#&/\u00e9";
    EXPECT_EQ(SystemInformationRequest().Path(), L"/SystemInformation/?refid=" + encoded + L"&sessid=s%20s");
    AnalysisRequest analysis;
    EXPECT_EQ(analysis.Path(), L"/service/Analysis/" + encoded);
    analysis.SetItemID(L"item^message_format");
    analysis.SetMessageFormat(L"xml");
    EXPECT_TRUE(analysis.Body().starts_with(L"<System><SessionID>s s</SessionID><ItemID>itemxml</ItemID>"));
}

TEST(Utf8, ReplacesWhatIsMalformedAndKeepsZeros)
{
    EXPECT_EQ(ToUtf8(L"\u20ac\xd83d\xde00 \xd83d"), "\xe2\x82\xac\xf0\x9f\x98\x80 \xef\xbf\xbd");
    EXPECT_EQ(FromUtf8("\xe2\x82\xac\xf0\x9f\x98\x80\xff!"), L"\u20ac\xd83d\xde00\ufffd!");
    EXPECT_EQ(ToUtf8(L"").size() + FromUtf8("").size() + FromUtf8(std::string_view("a\0b", 3)).size(), 3U);
}

}  // namespace
}  // namespace kel
