#include <comutil.h>
#include <gtest/gtest.h>
#include <objsafe.h>
#include <ocidl.h>
#include <wininet.h>

#include "client/ControlDll.h"
#include "client/Outer.h"
#include "client/PropertyBag.h"

namespace kel {
namespace {

using Microsoft::WRL::ComPtr;

struct Control : testing::Test {
    test::Apartment apartment;
    test::ControlDll dll;

    template <typename Interface>
    static ComPtr<Interface> As(const ComPtr<ISysInfo>& control)
    {
        ComPtr<Interface> queried;
        control.As(&queried);
        return queried;
    }

    /// Reads a property: its text, or "(null)".
    static std::wstring Get(const ComPtr<ISysInfo>& control,
                            HRESULT (STDMETHODCALLTYPE ISysInfo::*get)(BSTR*))
    {
        _bstr_t text;
        EXPECT_EQ((control.Get()->*get)(text.GetAddress()), S_OK);
        const wchar_t* characters = text;
        return characters != nullptr ? characters : L"(null)";
    }
};

TEST_F(Control, HasItsMembersInTheSlotsAndUnderTheIdsThatClientsWereBuiltWith)
{
    ComPtr<ITypeLib> library;
    ASSERT_EQ(LoadTypeLibEx(KEL_DLL_PATH, REGKIND_NONE, &library), S_OK);
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->guid, LIBID_DetectionLib);
    EXPECT_EQ(attributes->lcid, 0x409U);
    EXPECT_EQ(attributes->wMajorVerNum * 10 + attributes->wMinorVerNum, 10);
    library->ReleaseTLibAttr(attributes);

    ComPtr<ITypeInfo> dispatch;
    ComPtr<ITypeInfo> members;
    HREFTYPE reference = 0;
    ASSERT_EQ(library->GetTypeInfoOfGuid(IID_ISysInfo, &dispatch), S_OK);
    ASSERT_EQ(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    ASSERT_EQ(dispatch->GetRefTypeInfo(reference, &members), S_OK);
    const struct {
        const wchar_t* name;
        DISPID id;
        INVOKEKIND kind;
        int arguments;
    } rows[] = {
        {L"Analysis", 1, INVOKE_PROPERTYGET, 4},   {L"Logging", 2, INVOKE_PROPERTYGET, 1},
        {L"Logging", 2, INVOKE_PROPERTYPUT, 1},    {L"ReferrerID", 3, INVOKE_PROPERTYGET, 1},
        {L"ReferrerID", 3, INVOKE_PROPERTYPUT, 1}, {L"SessionID", 4, INVOKE_PROPERTYGET, 1},
        {L"SessionID", 4, INVOKE_PROPERTYPUT, 1},  {L"System", 5, INVOKE_PROPERTYGET, 2},
        {L"UserID", 6, INVOKE_PROPERTYGET, 1},     {L"UserID", 6, INVOKE_PROPERTYPUT, 1},
        {L"Version", 7, INVOKE_PROPERTYGET, 1},    {L"Detect", 8, INVOKE_FUNC, 0},
        {L"Value", 9, INVOKE_PROPERTYGET, 2},      {L"SysInfo", 10, INVOKE_PROPERTYGET, 1},
        {L"SysInfo", 10, INVOKE_PROPERTYPUT, 1},   {L"Debug", 11, INVOKE_PROPERTYGET, 1},
        {L"Debug", 11, INVOKE_PROPERTYPUT, 1},     {L"Configure", 12, INVOKE_FUNC, 1},
    };
    UINT index = 0;
    for (const auto& row : rows) {
        FUNCDESC* description = nullptr;
        ASSERT_EQ(members->GetFuncDesc(index, &description), S_OK);
        _bstr_t name;
        members->GetDocumentation(description->memid, name.GetAddress(), nullptr, nullptr, nullptr);
        EXPECT_STREQ(name, row.name);
        EXPECT_EQ(description->memid, row.id) << row.name;
        EXPECT_EQ(description->invkind, row.kind) << row.name;
        EXPECT_EQ(description->cParams, row.arguments) << row.name;
        EXPECT_EQ(description->oVft, static_cast<SHORT>((7 + index) * sizeof(void*))) << row.name;
        members->ReleaseFuncDesc(description);
        ++index;
    }
    FUNCDESC* further = nullptr;
    EXPECT_NE(members->GetFuncDesc(index, &further), S_OK);
}

TEST_F(Control, FactoryRefusesWhatItCannotMake)
{
    void* nothing = &dll;
    const auto getClassObject = dll.Entry<decltype(DllGetClassObject)>("DllGetClassObject");
    EXPECT_EQ(getClassObject(IID_ISysInfo, IID_IClassFactory, &nothing), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(nothing, nullptr);
    EXPECT_EQ(getClassObject(CLSID_SysInfo, IID_IDispatch, &nothing), E_NOINTERFACE);
    EXPECT_EQ(getClassObject(CLSID_SysInfo, IID_IClassFactory, nullptr), E_POINTER);
    const auto factory = dll.Factory();
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_ISysInfo, nullptr), E_POINTER);
    EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_ISysInfo, &nothing), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IStream, &nothing), E_NOINTERFACE);
    EXPECT_EQ(nothing, nullptr);
}

TEST_F(Control, CountsObjectsFactoriesAndLocks)
{
    const auto canUnload = dll.Entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow");
    EXPECT_EQ(canUnload(), S_OK);
    {
        const auto control = dll.Create();
        EXPECT_EQ(canUnload(), S_FALSE);
    }
    EXPECT_EQ(canUnload(), S_OK);
    dll.Factory()->LockServer(TRUE);
    EXPECT_EQ(canUnload(), S_FALSE);
    dll.Factory()->LockServer(FALSE);
    EXPECT_EQ(canUnload(), S_OK);
}

TEST_F(Control, LendsItsInterfacesToAnAggregatingObject)
{
    test::Outer outer;
    ASSERT_EQ(dll.Factory()->CreateInstance(&outer, IID_PPV_ARGS(&outer.inner)), S_OK);
    {
        ComPtr<ISysInfo> control;
        ASSERT_EQ(outer.QueryInterface(IID_PPV_ARGS(&control)), S_OK);
        EXPECT_EQ(outer.references, 2U);
        ComPtr<IUnknown> identity;
        ASSERT_EQ(control.As(&identity), S_OK);
        EXPECT_EQ(identity.Get(), &outer);
        EXPECT_EQ(Get(control, &ISysInfo::get_Version), L"4.5.1.0");
    }
    EXPECT_EQ(outer.references, 1U);
    outer.inner.Reset();
    EXPECT_EQ(dll.Entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow")(), S_OK);
}

TEST_F(Control, TellsTheSafetyOptionsThatAreSet)
{
    const auto control = dll.Create();
    ComPtr<IObjectSafety> safety;
    ASSERT_EQ(control->QueryInterface(IID_IObjectSafety, reinterpret_cast<void**>(safety.GetAddressOf())),
              S_OK);
    DWORD supported = 9, enabled = 9;
    EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, &supported, &enabled), S_OK);
    EXPECT_EQ(supported, 3U);
    EXPECT_EQ(enabled, 0U);
    const struct {
        REFIID riid;
        DWORD mask, options;
        HRESULT result;
        DWORD enabledAfter;
    } rows[] = {
        {IID_IDispatch, 3, 3, S_OK, 3},   {IID_IPersistPropertyBag, 1, 0, S_OK, 2},
        {IID_IDispatch, 4, 4, E_FAIL, 2}, {IID_IDispatch, 7, 1, E_FAIL, 2},
        {IID_IDispatch, 1, 5, E_FAIL, 2}, {IID_IStream, 3, 0, E_NOINTERFACE, 2},
        {IID_ISysInfo, 0, 0, S_OK, 2},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(safety->SetInterfaceSafetyOptions(row.riid, row.mask, row.options), row.result);
        EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, &supported, &enabled), S_OK);
        EXPECT_EQ(enabled, row.enabledAfter);
    }
    EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IStream, &supported, &enabled), E_NOINTERFACE);
    EXPECT_EQ(supported + enabled, 0U);
    EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, nullptr, &enabled), E_POINTER);
}

TEST_F(Control, KeepsItsSite)
{
    const auto control = dll.Create();
    const auto withSite = As<IObjectWithSite>(control);
    ComPtr<IUnknown> found;
    EXPECT_EQ(withSite->GetSite(IID_PPV_ARGS(&found)), E_FAIL);
    const auto site = dll.Factory();
    EXPECT_EQ(withSite->SetSite(site.Get()), S_OK);
    EXPECT_EQ(withSite->GetSite(IID_PPV_ARGS(&found)), S_OK);
    ComPtr<IUnknown> identity;
    ASSERT_EQ(site.As(&identity), S_OK);
    EXPECT_EQ(found.Get(), identity.Get());
    EXPECT_EQ(withSite->GetSite(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(withSite->SetSite(nullptr), S_OK);
    EXPECT_EQ(withSite->GetSite(IID_PPV_ARGS(&found)), E_FAIL);
}

TEST_F(Control, LoadsItsIdentifiersFromAPropertyBagAndSavesThem)
{
    const auto control = dll.Create();
    const auto persist = As<IPersistPropertyBag>(control);
    const std::wstring session = Get(control, &ISysInfo::get_SessionID);
    EXPECT_EQ(persist->InitNew(), S_OK);

    test::PropertyBag onlyLogging;
    onlyLogging.values[L"LOGGING"] = L"5";
    EXPECT_EQ(persist->Load(&onlyLogging, nullptr), S_OK);
    EXPECT_EQ(onlyLogging.reads,
              (std::vector<std::wstring>{L"LOGGING", L"SESSION_ID", L"REFERRER_ID", L"USER_ID", L"DEBUG"}));
    EXPECT_EQ(Get(control, &ISysInfo::get_Logging), L"0");
    EXPECT_EQ(Get(control, &ISysInfo::get_SessionID), session);

    test::PropertyBag bag;
    bag.values[L"SESSION_ID"] = L"s";
    bag.values[L"REFERRER_ID"] = L"r";
    bag.values[L"USER_ID"] = 42L;  // no string: skipped
    bag.values[L"DEBUG"] = L"yes";
    EXPECT_EQ(persist->Load(&bag, nullptr), S_OK);
    EXPECT_EQ(persist->Load(nullptr, nullptr), S_OK);
    test::PropertyBag saved;
    EXPECT_EQ(persist->Save(&saved, TRUE, TRUE), S_OK);
    const std::map<std::wstring, _variant_t> expected = {
        {L"SESSION_ID", L"s"}, {L"REFERRER_ID", L"r"}, {L"USER_ID", L""}, {L"DEBUG", L"1"}};
    EXPECT_EQ(saved.values, expected);
    EXPECT_EQ(persist->Save(nullptr, TRUE, TRUE), E_POINTER);
    CLSID classId = {};
    EXPECT_EQ(persist->GetClassID(&classId), S_OK);
    EXPECT_EQ(classId, CLSID_SysInfo);
}

TEST_F(Control, KeepsAndClearsTextsAsEachMemberDoes)
{
    const auto control = dll.Create();
    const auto other = dll.Create();  // all objects share one session
    const _bstr_t empty(L"");
    control->put_ReferrerID(_bstr_t(L"r\u00e9"));
    control->put_ReferrerID(empty);
    control->put_ReferrerID(nullptr);
    EXPECT_EQ(Get(other, &ISysInfo::get_ReferrerID), L"r\u00e9");
    control->put_SessionID(_bstr_t(L"s"));
    control->put_SessionID(nullptr);
    EXPECT_EQ(Get(other, &ISysInfo::get_SessionID), L"s");
    control->put_UserID(_bstr_t(L"u"));
    EXPECT_EQ(Get(other, &ISysInfo::get_UserID), L"u");
    control->put_UserID(nullptr);
    EXPECT_EQ(Get(other, &ISysInfo::get_UserID), L"");
    const std::pair<const wchar_t*, const wchar_t*> debugs[] = {
        {L"x", L"1"}, {L"0", L"0"}, {L"00", L"1"}, {L"", L"0"}};
    for (const auto& [put, got] : debugs) {
        control->put_Debug(_bstr_t(put));
        EXPECT_EQ(Get(control, &ISysInfo::get_Debug), got) << put;
    }
    const std::pair<const wchar_t*, const wchar_t*> levels[] = {
        {L"12", L"7"}, {L"3x", L"3"}, {L"-2", L"-2"}, {L"abc", L"0"}};
    for (const auto& [put, got] : levels) {
        control->put_Logging(_bstr_t(put));
        EXPECT_EQ(Get(control, &ISysInfo::get_Logging), got) << put;
    }
}

TEST_F(Control, AnswersWithoutAService)
{
    const auto control = dll.Create();
    EXPECT_EQ(
        control->Configure(_bstr_t(L"<user_id>u</user_id><groups><group id='71465'><value>a&b</value></group>"
                                   L"<group id='5'><value>five</value></group></groups>")),
        S_OK);
    _bstr_t value;
    EXPECT_EQ(control->get_Value(_bstr_t(L"5"), value.GetAddress()), S_OK);
    EXPECT_STREQ(value, L"five");
    EXPECT_EQ(Get(control, &ISysInfo::get_Logging), L"7");  // every run logs in full
    EXPECT_EQ(control->get_Value(_bstr_t(L"71206"), value.GetAddress()), S_OK);
    EXPECT_STREQ(value, L"u");
    BSTR missing = value.GetBSTR();
    EXPECT_EQ(control->get_Value(_bstr_t(L"no such value"), &missing), S_OK);
    EXPECT_EQ(missing, nullptr);
    EXPECT_EQ(control->put_SysInfo(_bstr_t(L"ignored")), S_OK);
    const std::wstring report = Get(control, &ISysInfo::get_SysInfo);
    EXPECT_TRUE(report.starts_with(L"<groups><group index=\"0\" id=\"71465\"><value>")) << report.c_str();
    _bstr_t system;
    EXPECT_EQ(control->get_System(_bstr_t(L"any"), system.GetAddress()), S_OK);
    EXPECT_EQ(static_cast<const wchar_t*>(system), report);
    _bstr_t analysis;
    EXPECT_EQ(control->get_Analysis(_bstr_t(L"i"), nullptr, nullptr, analysis.GetAddress()), S_OK);
    EXPECT_STREQ(analysis, L"");
}

TEST_F(Control, TakesNullPointersAndHugeTexts)
{
    const auto control = dll.Create();
    EXPECT_EQ(control->get_Version(nullptr), S_OK);
    EXPECT_EQ(control->get_SysInfo(nullptr), S_OK);
    EXPECT_EQ(control->get_System(nullptr, nullptr), S_OK);
    EXPECT_EQ(control->get_Value(nullptr, nullptr), S_OK);
    EXPECT_EQ(control->get_Analysis(nullptr, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(control->Configure(nullptr), S_OK);
    EXPECT_EQ(control->put_Logging(_bstr_t(L"0")), S_OK);
    const std::wstring megabyte(1 << 20, L'<');
    for (const std::wstring& text :
         {megabyte, L"<groups><group id=" + megabyte, L"<user_id>" + megabyte + L"</user_id>"})
        EXPECT_EQ(control->Configure(_bstr_t(text.c_str())), S_OK);
    EXPECT_EQ(Get(control, &ISysInfo::get_UserID), megabyte);
    EXPECT_EQ(control->GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(control->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, nullptr, nullptr, nullptr),
              E_POINTER);
}

}  // namespace
}  // namespace kel
