// The control in a host that lives long: what it leaves behind.
#include <windows.h>

#include <winternl.h>

#include <comutil.h>
#include <gtest/gtest.h>
#include <psapi.h>

#include <algorithm>
#include <optional>
#include <random>
#include <thread>

#include "client/ControlDll.h"
#include "client/Outer.h"

namespace kel {
namespace {

/// What this process holds, as the system counts it.
struct Holdings {
    long long handles = 0;
    long long privateBytes = 0;
    DWORD freeIndex = 0;  ///< the next one for thread-local data

    static Holdings Now()
    {
        // The table of the whole system: some systems answer 0 when asked for the handles of one process.
        std::vector<SYSTEM_HANDLE_ENTRY> buffer(100000);
        NtQuerySystemInformation(SystemHandleInformation, buffer.data(), 100000 * sizeof(buffer[0]), nullptr);
        const auto& table = *reinterpret_cast<const SYSTEM_HANDLE_INFORMATION*>(buffer.data());
        const auto isOurs = [](const auto& entry) { return entry.OwnerPid == GetCurrentProcessId(); };
        PROCESS_MEMORY_COUNTERS memory = {};
        GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
        const DWORD index = TlsAlloc();
        TlsFree(index);
        return {std::count_if(table.Handle, table.Handle + table.Count, isOurs),
                static_cast<long long>(memory.PagefileUsage), index};
    }

    void ExpectStill(long long moreHandles, long long moreBytes) const
    {
        const Holdings now = Now();
        EXPECT_LE(now.handles, handles + moreHandles);
        EXPECT_LE(now.privateBytes, privateBytes + moreBytes);
        EXPECT_EQ(now.freeIndex, freeIndex);
    }
};

/// Creates and uses so many controls, every other one aggregated, and releases them in no order. The log,
/// which grows by design, is left as it is.
void Live(const test::ControlDll& dll, int count)
{
    _bstr_t report;
    dll.Create()->get_SysInfo(report.GetAddress());  // the first read examines the machine
    std::minstd_rand random(1);
    std::vector<std::optional<test::Outer>> outers(16);
    std::vector<Microsoft::WRL::ComPtr<ISysInfo>> controls(outers.size());
    for (int made = 0; made < count && !testing::Test::HasFailure(); ++made) {
        const std::size_t place = random() % outers.size();
        auto& control = controls[place];
        control.Reset();
        test::Outer& outer = outers[place].emplace();
        if (made % 2 == 0)
            control = dll.Create();
        else if (SUCCEEDED(dll.Factory()->CreateInstance(&outer, IID_PPV_ARGS(&outer.inner))))
            outer.QueryInterface(IID_PPV_ARGS(&control));
        ASSERT_TRUE(control);
        _bstr_t version;
        EXPECT_EQ(control->put_UserID(_bstr_t(L"visitor")), S_OK);
        EXPECT_EQ(
            control->Configure(_bstr_t(L"<groups><group id='71465'><value>mine</value></group></groups>")),
            S_OK);
        EXPECT_EQ(control->get_SysInfo(report.GetAddress()), S_OK);
        EXPECT_NE(std::wstring(report).find(L"<value>mine</value>"), std::wstring::npos);
        EXPECT_EQ(control->get_Version(version.GetAddress()), S_OK);
        EXPECT_STREQ(version, L"4.5.1.0");
    }
    controls.clear();
}

TEST(Life, StaysInTheProcessOnceASessionLives)
{
    {
        const test::ControlDll onlyLoaded;
        EXPECT_EQ(onlyLoaded.Entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow")(), S_OK);
    }
    EXPECT_EQ(GetModuleHandleW(L"Detection.dll"), nullptr);
    std::wstring sessions[2];
    for (std::wstring& session : sessions) {
        std::thread([&session] {
            const test::Apartment apartment;
            const test::ControlDll dll;
            Live(dll, 10);
            _bstr_t value;
            dll.Create()->get_Value(_bstr_t(L"71424"), value.GetAddress());
            session = value.length() != 0 ? std::wstring(value) : std::wstring();
            EXPECT_EQ(dll.Entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow")(), S_OK);
        }).join();
        EXPECT_NE(GetModuleHandleW(L"Detection.dll"), nullptr);
    }
    EXPECT_NE(sessions[0], L"");
    EXPECT_EQ(sessions[1], sessions[0]);
}

TEST(Life, OfTenThousandControlsLeavesNothing)
{
    const test::Apartment apartment;
    const test::ControlDll dll;
    Live(dll, 1000);
    const Holdings before = Holdings::Now();
    Live(dll, 10000);
    // Were each control to leave 16 bytes, it would show; the system's allocator moves by some pages.
    before.ExpectStill(0, 128LL * 1024);
    EXPECT_EQ(dll.Entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow")(), S_OK);
}

}  // namespace
}  // namespace kel
