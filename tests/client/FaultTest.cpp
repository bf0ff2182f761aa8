// The control when an allocation or a system call fails. The machine is examined once per process, so each
// process has one fault, KEL_FAULT; fault_sweep.py starts the processes.
#include <windows.h>

#include <comutil.h>
#include <gmock/gmock.h>
#include <shlwapi.h>

#include <algorithm>
#include <optional>

#include "client/ControlDll.h"
#include "client/EdgeFaults.h"
#include "client/Hosts.h"
#include "support/ScratchKey.h"

namespace kel {
namespace {

using Control = Microsoft::WRL::ComPtr<ISysInfo>;
using test::EdgeFaults;
using test::Get;

struct Fault : testing::Test {
    test::Apartment apartment;
    const OwnedKey hardware = OpenKey(HKEY_LOCAL_MACHINE, L"HARDWARE", KEY_READ);
    test::ScratchKey machine{HKEY_LOCAL_MACHINE}, user{HKEY_CURRENT_USER};
    std::optional<test::ControlDll> dll;

    Fault()
    {
        machine.Write(L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP\\v4", L"Version", L"4.0");
        machine.Make(L"HARDWARE");
        RegCopyTreeW(hardware.get(), nullptr, OpenKey(machine.Key(), L"HARDWARE", KEY_ALL_ACCESS).get());
        EdgeFaults::Install();
    }

    ~Fault() override
    {
        EdgeFaults::Report();
        EXPECT_EQ(EdgeFaults::withLogon, 0);
    }

    /// Removes the fault, and loads the DLL if it could not be loaded.
    void Recover()
    {
        EdgeFaults::isArmed = false;
        if (dll->Handle() == nullptr)
            dll.emplace();
    }

    void CheckControl(const wchar_t* identifier);
};

/// Uses a control, also through IDispatch.
/// @return its texts
std::wstring Use(const Control& control)
{
    _bstr_t first;  // empty after a failure, and missing only where it could not be allocated
    EXPECT_EQ(control->put_Logging(_bstr_t(L"7")), S_OK);
    const HRESULT status = control->get_SysInfo(first.GetAddress());
    EXPECT_EQ(first.GetBSTR() != nullptr, status == S_OK);
    EXPECT_EQ(control->put_UserID(_bstr_t(L"me")), S_OK);
    EXPECT_EQ(control->Configure(_bstr_t(L"<groups><group id='71465'><value>mine</value></group></groups>")),
              S_OK);
    const std::wstring report = Get(control, &ISysInfo::get_SysInfo);
    _variant_t version;
    test::Call(control.Get(), L"Version", version);
    return (version.vt == VT_BSTR ? version.bstrVal : L"") + Get(control, &ISysInfo::get_UserID) +
           Get(control, &ISysInfo::get_Value, L"no such value") +
           Get(control, &ISysInfo::get_Analysis, L"item", L"xml", L"1.0") +
           (report.find(L"id=\"71465\"><value>mine</value>") != std::wstring::npos ? L" reported" : L"");
}

void Fault::CheckControl(const wchar_t* identifier)
{
    user.Write(L"Software\\Keldane", L"Run", identifier);
    EdgeFaults::Arm();
    dll.emplace();
    Control control = dll->Create();
    if (control)
        Use(control);
    Recover();
    if (!control)
        control = dll->Create();
    EXPECT_EQ(Use(control), L"4.5.1.0me71060|71063|71069|71207 reported");
    EXPECT_THAT(EdgeFaults::sent,
                testing::EndsWith("<ItemID>item</ItemID><UserID>me</UserID><Format>xml</Format>"
                                  "<Schema>1.0</Schema></System>"));
    // For each detector, one value that no source leaves empty.
    constexpr const wchar_t* Values[] = {L"71253", L"71094", L"71437", L"71069", L"71207", L"71382"};
    const auto isLost = [&](auto id) { return Get(control, &ISysInfo::get_Value, id).empty(); };
    const std::ptrdiff_t mayBeLost = EdgeFaults::failed.empty() ? 0 : EdgeFaults::isLasting ? 6 : 1;
    EXPECT_LE(std::ranges::count_if(Values, isLost), mayBeLost);
    EXPECT_NE(user.Dump().find(identifier), std::wstring::npos);
    control.Reset();
    EXPECT_EQ(dll->CanUnload(), S_OK);
}

TEST_F(Fault, LeavesAControlThatWorks)
{
    CheckControl(L"{01234567-89AB-CDEF-0123-456789ABCDEF}");
}

TEST_F(Fault, LeavesAControlThatWorksOnANewMachine)
{
    CheckControl(L"");
}

TEST_F(Fault, LeavesTheIdentifier0WhenNoGuidCanBeMade)
{
    EdgeFaults::Arm("CoCreateGuid:1");
    dll.emplace();
    EXPECT_EQ(Get(dll->Create(), &ISysInfo::get_Value, L"71207"), L"0");
}

TEST_F(Fault, LogsWhichStepOfAnExchangeCannotBegin)
{
    dll.emplace();
    const Control control = dll->Create();
    control->put_Logging(_bstr_t(L"7"));
    Get(control, &ISysInfo::get_Value, L"no such value");  // examines the machine
    for (const auto& [fault, line] : {std::pair("CreateThread:1", L"Can't start an Internet exchange.\n"),
                                      {"InternetOpenW:1", L"Can't open Internet.\n"},
                                      {"InternetConnectW:1", L"Can't open Internet connection.\n"},
                                      {"HttpOpenRequestW:1", L"Can't open Internet request.\n"}}) {
        EdgeFaults::log.clear();
        EdgeFaults::Arm(fault);
        Get(control, &ISysInfo::get_Analysis, L"item", L"xml", L"1.0");
        EXPECT_THAT(EdgeFaults::log, testing::HasSubstr(line)) << fault;
    }
    Recover();
}

TEST_F(Fault, LeavesARegistrationThatIsWholeOrNone)
{
    for (const wchar_t* key : {L"CLSID", L"TypeLib", L"Interface"})
        user.Make(std::wstring(L"Software\\Classes\\") + key);
    const auto classes = [this] { return user.Dump(L"Software\\Classes"); };
    const auto install = [this](bool isOn) {
        return dll->Handle() ? dll->Entry<decltype(DllInstall)>("DllInstall")(isOn, L"User") : E_FAIL;
    };
    const std::wstring none = classes();
    dll.emplace();
    EXPECT_EQ(install(true), S_OK);
    const std::wstring whole = classes();
    for (const wchar_t* part :
         {L"InprocServer32]\n=", L"ThreadingModel=", L"ToolboxBitmap32]\n=", L"TypeLib\\{"})
        EXPECT_NE(whole.find(part), std::wstring::npos) << part << " is not in " << whole;
    EXPECT_NE(FindResourceW(dll->Handle(), MAKEINTRESOURCEW(102), MAKEINTRESOURCEW(2)), nullptr);
    // HKEY_CLASSES_ROOT stands for the classes of all users again, and not for the user's.
    EXPECT_NE(OpenKey(HKEY_CLASSES_ROOT, L"CLSID\\{4590F811-1D3A-11D0-891F-00AA004B2E24}", KEY_READ),
              nullptr);
    EXPECT_EQ(install(false), S_OK);
    EXPECT_TRUE(EdgeFaults::WasCalled("RegisterTypeLibForUser"));
    EXPECT_TRUE(EdgeFaults::WasCalled("UnRegisterTypeLibForUser"));
    dll.reset();
    EdgeFaults::Arm();
    dll.emplace();
    const HRESULT result = install(true);
    EXPECT_EQ(classes(), SUCCEEDED(result) ? whole : none);
    EXPECT_TRUE(FAILED(install(false)) || classes() == none);
    Recover();
    Get(dll->Create(), &ISysInfo::get_Value, L"no such value");  // throws, as failures do
    for (const auto& [isOn, expected] :
         {std::pair(true, whole), {true, whole}, {false, none}, {false, none}}) {
        EXPECT_EQ(install(isOn), S_OK);
        EXPECT_EQ(classes(), expected);
    }
}

}  // namespace
}  // namespace kel
