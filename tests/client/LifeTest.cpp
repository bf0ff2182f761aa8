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
    std::size_t freeThreadLocals = 0;

    static Holdings Now()
    {
        // The table of the whole system: some systems answer 0 when asked for the handles of one process.
        std::vector<SYSTEM_HANDLE_ENTRY> buffer(100000);
        NtQuerySystemInformation(SystemHandleInformation, buffer.data(),
                                 static_cast<ULONG>(buffer.size() * sizeof(SYSTEM_HANDLE_ENTRY)), nullptr);
        const auto& table = *reinterpret_cast<const SYSTEM_HANDLE_INFORMATION*>(buffer.data());
        PROCESS_MEMORY_COUNTERS memory = {};
        GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
        const auto isOurs = [](const auto& entry) { return entry.OwnerPid == GetCurrentProcessId(); };
        return {std::count_if(table.Handle, table.Handle + table.Count, isOurs),
                static_cast<long long>(memory.PagefileUsage), TakeThreadLocals()};
    }

    /// Takes all indices for thread-local data that are left, does something, and gives them back.
    static std::size_t TakeThreadLocals(void (*meanwhile)() = [] {})
    {
        std::vector<DWORD> taken;
        for (DWORD index = TlsAlloc(); index != TLS_OUT_OF_INDEXES; index = TlsAlloc())
            taken.push_back(index);
        meanwhile();
        std::ranges::for_each(taken, &TlsFree);
        return taken.size();
    }

    /// Checks that the process holds what it holds here, and at most so much more.
    void ExpectStill(long long moreHandles, long long moreBytes) const
    {
        const Holdings now = Now();
        std::printf("%lld handles and %lld bytes more\n", now.handles - handles,
                    now.privateBytes - privateBytes);
        EXPECT_LE(now.handles, handles + moreHandles);
        EXPECT_LE(now.privateBytes, privateBytes + moreBytes);
        EXPECT_EQ(now.freeThreadLocals, freeThreadLocals);
    }
};

/// Uses a control as far as the log is left as it is; it grows by design.
void Use(ISysInfo& control)
{
    _bstr_t report, version;
    EXPECT_EQ(control.put_Logging(_bstr_t(L"0")), S_OK);
    EXPECT_EQ(control.put_UserID(_bstr_t(L"visitor")), S_OK);
    EXPECT_EQ(control.Configure(_bstr_t(L"<groups><group id='71465'><value>configured</value></group>"
                                        L"<group id='5' index='1'><value>five</value></group></groups>")),
              S_OK);
    EXPECT_EQ(control.get_SysInfo(report.GetAddress()), S_OK);
    EXPECT_NE(std::wstring(report).find(L"<value>configured</value>"), std::wstring::npos);
    EXPECT_EQ(control.get_Version(version.GetAddress()), S_OK);
    EXPECT_STREQ(version, L"4.5.1.0");
}

/// Creates and uses so many controls, every other one aggregated, and releases them in no order.
void Live(const test::ControlDll& dll, int count)
{
    _bstr_t report;
    dll.Create()->get_SysInfo(report.GetAddress());  // the first read examines the machine
    std::minstd_rand random(1);
    std::vector<std::optional<test::Outer>> outers(16);
    std::vector<Microsoft::WRL::ComPtr<ISysInfo>> controls(outers.size());
    for (int made = 0; made < count && !testing::Test::HasFailure(); ++made) {
        const std::size_t place = random() % outers.size();
        controls[place].Reset();
        test::Outer& outer = outers[place].emplace();
        if (made % 2 == 0)
            controls[place] = dll.Create();
        else if (SUCCEEDED(dll.Factory()->CreateInstance(&outer, IID_PPV_ARGS(&outer.inner))))
            outer.QueryInterface(IID_PPV_ARGS(&controls[place]));
        ASSERT_TRUE(controls[place]);
        Use(*controls[place].Get());
    }
    controls.clear();
}

TEST(Life, OfTenThousandControlsLeavesNothing)
{
    const test::Apartment apartment;
    const test::ControlDll dll;
    Live(dll, 1000);
    const Holdings before = Holdings::Now();
    Live(dll, 10000);
    // Were each control to leave 16 bytes, it would show; the system's allocator moves by some pages.
    before.ExpectStill(0, 128 * 1024);
    EXPECT_EQ(dll.Entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow")(), S_OK);
}

TEST(Life, GoesOnInASecondApartmentAndAfterTheModuleIsLoadedAgain)
{
    std::optional<Holdings> before;
    constexpr int Loads = 4;
    for (int load = 0; load <= Loads; ++load) {
        {
            const test::ControlDll dll;
            for (int apartments = 0; apartments < 2; ++apartments)
                std::thread([&dll] {
                    const test::Apartment apartment;
                    Live(dll, 100);
                }).join();
        }
        EXPECT_EQ(GetModuleHandleW(L"Detection.dll"), nullptr);
        before = before.value_or(Holdings::Now());
    }
    // What lives as long as the process is lost with the module: the session with its values, the probes, and
    // two handles of a lock in the compiler's runtime library.
    before->ExpectStill(2 * Loads, 64 * 1024 * Loads);
}

TEST(Life, DoesNotBeginWhereItWouldEndTheHost)
{
    // The system's own libraries need some as well.
    const OwnedLibrary internet(LoadLibraryW(L"wininet.dll"));
    const OwnedLibrary random(LoadLibraryW(L"bcrypt.dll"));
    Holdings::TakeThreadLocals([] { EXPECT_EQ(LoadLibraryW(KEL_DLL_PATH), nullptr); });
    EXPECT_NE(test::ControlDll().Handle(), nullptr);
}

}  // namespace
}  // namespace kel
