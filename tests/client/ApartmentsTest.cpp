// Two apartments of one process that use the control at once: they share the session.
#include <windows.h>

#include <comutil.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "client/ControlDll.h"
#include "client/Script.h"
#include "support/FakeWmi.h"

namespace kel {
namespace {

using Microsoft::WRL::ComPtr;

struct Apartments : testing::Test {
    // Wine's first use of the display, by two threads at once, makes them wait for each other.
    const int prepared = ReleaseDC(nullptr, GetDC(nullptr));
    const test::ControlDll dll;
};

TEST_F(Apartments, TakeTurns)
{
    const auto use = [this](wchar_t letter) {
        const test::Apartment apartment;
        const auto control = dll.Create();
        const std::wstring whole(1000, letter);
        const _bstr_t text(whole.c_str());
        const _bstr_t groups(
            (L"<groups><group id='1'><value>" + whole + L"</value></group></groups>").c_str());
        for (const ULONGLONG end = GetTickCount64() + 3000; GetTickCount64() < end;) {
            control->put_ReferrerID(text);
            control->put_UserID(text);
            control->Configure(groups);
            for (const wchar_t* id : {L"1", L"71206", L"71218"}) {
                _bstr_t value, report;
                control->get_SysInfo(report.GetAddress());
                control->get_Value(_bstr_t(id), value.GetAddress());
                const std::wstring read = value.length() != 0 ? std::wstring(value) : L"";
                ASSERT_TRUE(read == std::wstring(1000, L'a') || read == std::wstring(1000, L'b')) << read;
            }
        }
    };
    std::thread other(use, L'a');
    use(L'b');
    other.join();
}

TEST_F(Apartments, ServeCallsWhileTheyWaitForTheirTurn)
{
    const test::Apartment apartment;
    std::promise<IStream*> made;
    std::promise<void> begun;
    std::atomic<bool> isServed = false;
    std::thread other([&] {
        const test::Apartment second;
        const auto control = dll.Create();
        IStream* stream = nullptr;
        CoMarshalInterThreadInterfaceInStream(IID_IDispatch, control.Get(), &stream);
        made.set_value(stream);
        begun.get_future().wait();
        control->put_Debug(_bstr_t(L"1"));
        EXPECT_TRUE(isServed);
    });
    ComPtr<IDispatch> control;
    EXPECT_EQ(CoGetInterfaceAndReleaseStream(made.get_future().get(), IID_PPV_ARGS(&control)), S_OK);
    test::FakeWmiData data;
    _variant_t version;
    data.whileAsked = [&] {  // in the midst of a run
        begun.set_value();
        EXPECT_EQ(test::Call(control.Get(), L"Version", version), S_OK);
        isServed = true;
    };
    {
        const test::FakeWmi fake(data);
        dll.Create()->Detect();
    }
    if (!isServed)
        begun.set_value();
    other.join();
    EXPECT_EQ(version, _variant_t(L"4.5.1.0"));
}

}  // namespace
}  // namespace kel
