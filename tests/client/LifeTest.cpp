// The control in a long-lived host, and in one with two apartments.
#include <windows.h>

#include <comutil.h>
#include <gtest/gtest.h>
#include <psapi.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <random>
#include <sstream>
#include <thread>

#include "client/ControlDll.h"
#include "client/Hosts.h"
#include "support/FakeWmi.h"
#include "support/ScratchKey.h"
#include "support/TestFolder.h"

namespace kel {
namespace {

using Microsoft::WRL::ComPtr;
using test::Get;

/// What this process holds: the next handle and the next index for thread-local data, of which the lowest
/// free ones are assigned, and private bytes.
std::array<std::size_t, 3> Holdings()
{
    const HANDLE handle = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const DWORD index = TlsAlloc();
    PROCESS_MEMORY_COUNTERS memory = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
    TlsFree(index);
    CloseHandle(handle);
    return {reinterpret_cast<std::size_t>(handle), index, memory.PagefileUsage};
}

/// Creates and uses the given number of controls, every other one aggregated, and releases them in random
/// order. The log, which grows by design, is left as it is.
void Live(const test::ControlDll& dll, int count)
{
    const std::wstring groups = L"<groups><group id='71465'><value>mine</value></group></groups>";
    Get(dll.Create(), &ISysInfo::get_SysInfo);  // the first read examines the machine
    std::minstd_rand random(1);
    std::array<test::Outer, 16> outers;
    std::array<ComPtr<ISysInfo>, 16> controls;
    for (int made = 0; made < count && !testing::Test::HasFailure(); ++made) {
        const std::size_t place = random() % controls.size();
        auto& control = controls.at(place);
        control.Reset();
        control = made % 2 == 0 ? dll.Create() : outers.at(place).Create(*dll.Factory().Get());
        ASSERT_TRUE(control);
        EXPECT_EQ(control->put_UserID(_bstr_t(L"visitor")), S_OK);
        EXPECT_EQ(control->Configure(_bstr_t(groups.c_str())), S_OK);
        EXPECT_NE(Get(control, &ISysInfo::get_SysInfo).find(L"<value>mine</value>"), std::wstring::npos);
        EXPECT_EQ(Get(control, &ISysInfo::get_Version), L"4.5.1.0");
    }
}

TEST(Life, KeepsTheModuleLoadedOnceASessionExists)
{
    EXPECT_EQ(test::ControlDll().CanUnload(), S_OK);
    EXPECT_EQ(GetModuleHandleW(L"Detection.dll"), nullptr);
    std::wstring sessions[2];
    for (std::wstring& session : sessions) {
        std::thread([&session] {
            const test::Apartment apartment;
            const test::ControlDll dll;
            Live(dll, 10);
            session = Get(dll.Create(), &ISysInfo::get_Value, L"71424");
            EXPECT_EQ(dll.CanUnload(), S_OK);
        }).join();
        EXPECT_NE(GetModuleHandleW(L"Detection.dll"), nullptr);
    }
    EXPECT_NE(sessions[0], L"");
    EXPECT_EQ(sessions[1], sessions[0]);
}

TEST(Life, KeepsALogLevelThatWasSetBeforeTheFirstSession)
{
    const test::Apartment apartment;
    for (const wchar_t* level : {L"0", L"5"}) {
        const test::ControlDll dll;  // a host frees what it does not use, and loads it again
        const auto control = dll.Create();
        EXPECT_EQ(Get(control, &ISysInfo::get_Logging), level);
        control->put_Logging(_bstr_t(L"5"));
    }
}

TEST(Life, WritesTheLogFileOfThePolicy)
{
    const test::TestFolder folder;
    constexpr std::size_t MaxLength = 239;
    std::filesystem::path path = folder.Path() / L"a.log";
    path += std::wstring(MaxLength - path.wstring().size(), L'g');
    const test::ScratchKey machine(HKEY_LOCAL_MACHINE);
    machine.Write(L"Software\\Policies\\Keldane", L"LogFile", path.c_str());
    const test::Apartment apartment;
    test::ControlDll().Create()->put_Logging(_bstr_t(L"3"));
    std::string text;
    for (int attempt = 0; attempt < 3000 && text.find("(built in)") == text.npos; ++attempt) {
        Sleep(10);
        std::ostringstream read;
        read << std::ifstream(path).rdbuf();
        text = read.str();
    }
    EXPECT_NE(text.find("TRACE | service analysis.keldane.example (built in)"), text.npos) << text;
    EXPECT_EQ(text.find("is ignored"), text.npos) << text;
    EXPECT_EQ(text.find('\0'), text.npos) << text;
}

TEST(Life, LeavesNothingAfterTenThousandControls)
{
    const test::Apartment apartment;
    const test::ControlDll dll;
    Live(dll, 1000);
    const auto [handle, index, bytes] = Holdings();
    Live(dll, 10000);
    const auto [handleAfter, indexAfter, bytesAfter] = Holdings();
    EXPECT_LE(handleAfter, handle);
    EXPECT_EQ(indexAfter, index);
    // If each control left 16 bytes, it would show; the system's allocator fluctuates by some pages.
    EXPECT_LE(bytesAfter, bytes + std::size_t{128} * 1024);
    EXPECT_EQ(dll.CanUnload(), S_OK);
}

struct Apartments : testing::Test {
    // Wine's first use of the display, by two threads at once, makes them wait for each other.
    const int prepared = ReleaseDC(nullptr, GetDC(nullptr));
    const test::ControlDll dll;
};

TEST_F(Apartments, TakeTurns)
{
    // Long texts, so that one apartment is likely to begin while the other copies.
    const std::wstring texts[] = {std::wstring(100'000, L'a'), std::wstring(100'000, L'b')};
    const auto use = [&](const std::wstring& given) {
        const test::Apartment apartment;
        const auto control = dll.Create();
        const _bstr_t text(given.c_str()), tags((L"<user_id>" + given + L"</user_id>").c_str());
        for (const ULONGLONG end = GetTickCount64() + 3000; GetTickCount64() < end;) {
            control->put_UserID(text);
            const std::wstring read = Get(control, &ISysInfo::get_UserID);
            ASSERT_TRUE(read == texts[0] || read == texts[1]) << read.substr(0, 100);
            control->Configure(tags);
        }
    };
    std::thread other(use, texts[0]);
    use(texts[1]);
    other.join();
}

TEST_F(Apartments, ServeCallsWhileTheyWaitForTheirTurn)
{
    const test::Apartment apartment;
    std::promise<IStream*> made;
    std::promise<void> begun;
    std::thread other([&] {
        const test::Apartment second;
        const auto control = dll.Create();
        IStream* stream = nullptr;
        CoMarshalInterThreadInterfaceInStream(IID_IDispatch, control.Get(), &stream);
        made.set_value(stream);
        begun.get_future().wait();
        control->put_Debug(_bstr_t(L"1"));
    });
    ComPtr<IDispatch> control;
    EXPECT_EQ(CoGetInterfaceAndReleaseStream(made.get_future().get(), IID_PPV_ARGS(&control)), S_OK);
    test::FakeWmiData data;
    _variant_t debug;
    data.whileAsked = [&] {  // in the midst of a run
        begun.set_value();
        EXPECT_EQ(test::Call(control.Get(), L"Debug", debug), S_OK);
    };
    {
        const test::FakeWmi fake(data);
        dll.Create()->Detect();
    }
    other.join();
    EXPECT_EQ(debug, _variant_t(L"0"));
}

TEST_F(Apartments, LookUpNamesAndReadTheVersionWithoutATurn)
{
    const test::Apartment apartment;
    struct Use {
        const char* what;
        std::function<HRESULT(ISysInfo&)> call;
        std::future<HRESULT> result = {};
    };
    _bstr_t version, name(L"Detect");
    wchar_t* names = name;
    DISPID id = 0;
    ComPtr<ITypeInfo> info;
    Use uses[] = {
        {"version", [&](ISysInfo& control) { return control.get_Version(version.GetAddress()); }},
        {"name", [&](ISysInfo& control) { return control.GetIDsOfNames(IID_NULL, &names, 1, 0, &id); }},
        {"type information", [&](ISysInfo& control) { return control.GetTypeInfo(0, 0, &info); }},
    };
    test::FakeWmiData data;
    data.whileAsked = [&] {  // in the midst of a run
        for (Use& use : uses) {
            use.result = std::async(std::launch::async, [this, &use] {
                const test::Apartment other;
                return use.call(*dll.Create().Get());
            });
            EXPECT_EQ(use.result.wait_for(std::chrono::seconds(20)), std::future_status::ready) << use.what;
        }
    };
    {
        const test::FakeWmi fake(data);
        dll.Create()->Detect();
    }
    for (Use& use : uses)
        EXPECT_EQ(use.result.get(), S_OK) << use.what;
    EXPECT_EQ(version, _bstr_t(L"4.5.1.0"));
    EXPECT_EQ(id, 8);
    EXPECT_TRUE(info);
}

}  // namespace
}  // namespace kel
