#include <comutil.h>
#include <gtest/gtest.h>
#include <objsafe.h>
#include <ocidl.h>
#include <shlwapi.h>

#include <map>

#include "client/ControlDll.h"
#include "client/Hosts.h"
#include "support/ScratchKey.h"
#include "support/TestFiles.h"

namespace kel {
namespace {

using Microsoft::WRL::ComPtr;

struct Control : testing::Test {
    const test::Apartment apartment;
    const test::ControlDll dll;
    ComPtr<ISysInfo> control = dll.Create();

    template <typename Interface>
    ComPtr<Interface> As() const
    {
        ComPtr<Interface> queried;
        control.As(&queried);
        return queried;
    }

    template <typename... Texts>
    std::wstring Get(Texts... texts) const
    {
        return test::Get(control, texts...);
    }
};

TEST_F(Control, KeepsVtableSlotsAndDispatchIds)
{
    IID built = {};
    IIDFromString(L"{6F1D2B84-3A5C-4E97-B0D8-52C7A9E4F613}", &built);
    EXPECT_EQ(built, IID_ISysInfo);
    ComPtr<ITypeLib> library;
    ComPtr<ITypeInfo> dispatch, members;
    HREFTYPE reference = 0;
    ASSERT_EQ(LoadTypeLibEx(test::TestFile(KEL_DLL_PATH).c_str(), REGKIND_NONE, &library), S_OK);
    ASSERT_EQ(library->GetTypeInfoOfGuid(IID_ISysInfo, &dispatch), S_OK);
    ASSERT_EQ(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    ASSERT_EQ(dispatch->GetRefTypeInfo(reference, &members), S_OK);
    std::wstring all;  // id, name, kind and count of arguments
    FUNCDESC* member = nullptr;
    for (UINT index = 0; SUCCEEDED(members->GetFuncDesc(index, &member)); ++index) {
        _bstr_t name;
        members->GetDocumentation(member->memid, name.GetAddress(), nullptr, nullptr, nullptr);
        EXPECT_EQ(member->oVft, static_cast<SHORT>((7 + index) * sizeof(void*))) << index;
        const wchar_t* const kinds[] = {L"", L" call ", L" get ", L"", L" put "};
        all += std::to_wstring(member->memid) + L" " + name.GetBSTR() + kinds[member->invkind] +
               std::to_wstring(member->cParams) + L"\n";
        members->ReleaseFuncDesc(member);
    }
    EXPECT_EQ(all,
              L"1 Analysis get 4\n2 Logging get 1\n2 Logging put 1\n3 ReferrerID get 1\n3 ReferrerID put 1\n"
              L"4 SessionID get 1\n4 SessionID put 1\n5 System get 2\n6 UserID get 1\n6 UserID put 1\n"
              L"7 Version get 1\n8 Detect call 0\n9 Value get 2\n10 SysInfo get 1\n10 SysInfo put 1\n"
              L"11 Debug get 1\n11 Debug put 1\n12 Configure call 1\n");
}

TEST_F(Control, CountsObjectsAndLocksAndSupportsAggregation)
{
    EXPECT_EQ(dll.CanUnload(), S_FALSE);
    EXPECT_EQ(dll.Factory()->LockServer(TRUE), S_OK);
    EXPECT_EQ(dll.CanUnload(), S_FALSE);  // a lock adds to the objects
    dll.Factory()->LockServer(FALSE);
    EXPECT_EQ(control->AddRef(), 2U);
    EXPECT_EQ(control->Release(), 1U);
    ComPtr<IClassFactory> factory = dll.Factory();
    EXPECT_EQ(factory->AddRef(), 2U);
    EXPECT_EQ(factory->Release(), 1U);
    factory.Reset();
    control.Reset();
    EXPECT_EQ(dll.CanUnload(), S_OK);
    for (const auto& [lock, result] : {std::pair(TRUE, S_FALSE), {FALSE, S_OK}}) {
        dll.Factory()->LockServer(lock);
        EXPECT_EQ(dll.CanUnload(), result);
    }
    test::Outer outer;
    control = outer.Create(*dll.Factory().Get());
    ASSERT_TRUE(control);
    EXPECT_EQ(outer.references, 2U);
    EXPECT_EQ(As<IUnknown>().Get(), &outer);
    EXPECT_EQ(Get(&ISysInfo::get_Version), L"4.5.1.0");
    control.Reset();
    EXPECT_EQ(outer.references, 1U);
    EXPECT_EQ(dll.CanUnload(), S_FALSE);
    outer.inner.Reset();
    EXPECT_EQ(dll.CanUnload(), S_OK);
}

TEST_F(Control, ReportsItsSafetyOptions)
{
    ComPtr<IObjectSafety> safety;
    control->QueryInterface(IID_IObjectSafety, reinterpret_cast<void**>(safety.GetAddressOf()));
    ASSERT_TRUE(safety);
    DWORD supported = 9, enabled = 9;
    const std::tuple<IID, DWORD, DWORD, HRESULT, DWORD> rows[] = {
        {IID_IStream, 3, 3, E_NOINTERFACE, 0},    {IID_IDispatch, 3, 3, S_OK, 3},
        {IID_IPersistPropertyBag, 1, 0, S_OK, 2}, {IID_IDispatch, 7, 1, E_FAIL, 2},
        {IID_IDispatch, 1, 5, S_OK, 3},
    };
    for (const auto& [riid, mask, options, result, enabledAfter] : rows) {
        EXPECT_EQ(safety->SetInterfaceSafetyOptions(riid, mask, options), result);
        EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, &supported, &enabled), S_OK);
        EXPECT_EQ(std::tie(supported, enabled), std::tuple(3U, enabledAfter));
    }
    EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IStream, &supported, &enabled), E_NOINTERFACE);
    EXPECT_EQ(supported + enabled, 0U);
    EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, nullptr, &enabled), E_POINTER);
}

TEST_F(Control, KeepsItsSite)
{
    const auto withSite = As<IObjectWithSite>();
    ComPtr<IClassFactory> found;
    for (const auto& [site, result] : {std::pair(dll.Factory(), S_OK), {nullptr, E_FAIL}}) {
        EXPECT_EQ(withSite->SetSite(site.Get()), S_OK);
        EXPECT_EQ(withSite->GetSite(IID_PPV_ARGS(&found)), result);
        EXPECT_EQ(found, site);
    }
}

TEST_F(Control, LoadsPageParametersAndSavesNoSession)
{
    const auto persist = As<IPersistPropertyBag>();
    test::PropertyBag bag, saved;
    EXPECT_EQ(persist->InitNew(), S_OK);
    EXPECT_EQ(persist->Save(&saved, TRUE, TRUE), S_OK);
    EXPECT_TRUE(saved.values.empty());
    control->put_Debug(_bstr_t(L"yes"));
    bag.values = {{L"LOGGING", L"5"}, {L"SESSION_ID", 42L}, {L"REFERRER_ID", L"demo"}, {L"DEBUG", L"0"}};
    EXPECT_EQ(persist->Load(&bag, nullptr), S_OK);
    EXPECT_EQ(Get(&ISysInfo::get_Logging), L"0");
    bag.values = {{L"USER_ID", L"visitor"},
                  {L"DEBUG", dll.Factory().Get()}};  // cannot be converted to a text
    std::map<std::wstring, _variant_t> expected = {{L"REFERRER_ID", L"demo"}, {L"USER_ID", L"visitor"}};
    for (const bool isDebug : {false, true}) {
        if (isDebug) {
            expected[L"DEBUG"] = L"1";
            control->put_Debug(_bstr_t(L"yes"));
        }
        EXPECT_EQ(persist->Load(&bag, nullptr), S_OK);
        EXPECT_EQ(persist->Save(&saved, TRUE, TRUE), S_OK);
        EXPECT_EQ(saved.values, expected);
    }
    EXPECT_EQ(Get(&ISysInfo::get_SessionID), L"42");
    EXPECT_EQ(persist->Load(nullptr, nullptr), S_OK);
    EXPECT_EQ(persist->Save(nullptr, TRUE, TRUE), E_POINTER);
    saved.written = STG_E_MEDIUMFULL;
    EXPECT_EQ(persist->Save(&saved, TRUE, TRUE), STG_E_MEDIUMFULL);
    CLSID classId = {};
    EXPECT_EQ(As<IPersist>()->GetClassID(&classId), S_OK);
    EXPECT_EQ(classId, CLSID_SysInfo);
}

TEST_F(Control, ReturnsThePropertiesThatWereSet)
{
    const auto check = [this](const char* name, auto put, auto get,
                              std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> rows) {
        for (const auto& [text, result] : rows) {
            EXPECT_EQ((control.Get()->*put)(_bstr_t(text)), S_OK) << name;
            EXPECT_EQ(Get(get), result) << name << " after \"" << text << '"';
        }
    };
    check("ReferrerID", &ISysInfo::put_ReferrerID, &ISysInfo::get_ReferrerID, {{L"r", L"r"}, {L"", L"r"}});
    check("SessionID", &ISysInfo::put_SessionID, &ISysInfo::get_SessionID, {{L"s", L"s"}, {L"", L"s"}});
    check("UserID", &ISysInfo::put_UserID, &ISysInfo::get_UserID, {{L"u", L"u"}, {L"", L""}});
    check("Debug", &ISysInfo::put_Debug, &ISysInfo::get_Debug,
          {{L"x", L"1"}, {L"0", L"0"}, {L"00", L"1"}, {L"", L"0"}});
    check("Logging", &ISysInfo::put_Logging, &ISysInfo::get_Logging,
          {{L"12", L"7"}, {L"3x", L"3"}, {L"-2", L"-2"}, {L"abc", L"0"}});
}

TEST_F(Control, AcceptsNullPointersAndHugeTexts)
{
    for (const HRESULT result :
         {control->put_SessionID(nullptr), control->put_UserID(nullptr), control->get_Version(nullptr),
          control->get_SysInfo(nullptr), control->get_System(nullptr, nullptr),
          control->get_Value(nullptr, nullptr), control->get_Analysis(nullptr, nullptr, nullptr, nullptr),
          control->Configure(nullptr), control->put_SysInfo(_bstr_t(L"ignored"))})
        EXPECT_EQ(result, S_OK);
    EXPECT_NE(Get(&ISysInfo::get_SessionID), L"");
    const std::wstring megabyte(1 << 20, L'<'), zeros(3, L'\0');
    EXPECT_EQ(control->Configure(_bstr_t((L"<groups><group id=" + megabyte).c_str())), S_OK);
    EXPECT_EQ(control->Configure(_bstr_t((L"<user_id>" + megabyte + L"</user_id>").c_str())), S_OK);
    EXPECT_EQ(Get(&ISysInfo::get_UserID), megabyte);
    control->put_UserID(_bstr_t(SysAllocStringLen(zeros.data(), 3), false));
    EXPECT_EQ(test::Get(dll.Create(), &ISysInfo::get_UserID), zeros);  // all objects share one session
    const std::wstring behind = zeros + L"<user_id>behind zeros</user_id>";
    control->Configure(_bstr_t(SysAllocStringLen(behind.data(), static_cast<UINT>(behind.size())), false));
    EXPECT_EQ(Get(&ISysInfo::get_UserID), L"behind zeros");
    EXPECT_EQ(control->GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(control->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, nullptr, nullptr, nullptr),
              E_POINTER);
    EXPECT_EQ(As<IObjectWithSite>()->GetSite(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(Control, IsRegisteredForAllUsersOnRequestAlone)
{
    const test::ScratchKey classes(HKEY_CLASSES_ROOT);
    _variant_t version;
    EXPECT_EQ(test::Call(control.Get(), L"Version", version), S_OK);
    EXPECT_EQ(classes.Dump(), L"[]\n");
    EXPECT_EQ(dll.Entry<decltype(DllRegisterServer)>("DllRegisterServer")(), S_OK);
    const std::wstring path = test::TestFile(KEL_DLL_PATH);
    for (const std::wstring& part :
         {L"\\InprocServer32]\n=" + path + L"\n", std::wstring(L"\n=Detection 1.0 Type Library\n")})
        EXPECT_NE(classes.Dump().find(part), std::wstring::npos) << part;
    EXPECT_EQ(dll.Entry<decltype(DllUnregisterServer)>("DllUnregisterServer")(), S_OK);
    EXPECT_EQ(classes.Dump().find(L"InprocServer32"), std::wstring::npos);
    EXPECT_EQ(dll.Entry<decltype(DllInstall)>("DllInstall")(TRUE, L"other"), E_INVALIDARG);
}

TEST_F(Control, RejectsUnknownClassesAndInterfaces)
{
    const auto factory = dll.Factory();
    const auto getClassObject = dll.Entry<decltype(DllGetClassObject)>("DllGetClassObject");
    void* made = this;
    EXPECT_EQ(getClassObject(IID_ISysInfo, IID_IClassFactory, &made), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(getClassObject(CLSID_SysInfo, IID_IDispatch, &made), E_NOINTERFACE);
    EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_ISysInfo, &made), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IStream, &made), E_NOINTERFACE);
    EXPECT_EQ(getClassObject(CLSID_SysInfo, IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_ISysInfo, nullptr), E_POINTER);
    EXPECT_EQ(factory->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(control->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(As<IPersist>()->GetClassID(nullptr), E_POINTER);

    ComPtr<ITypeInfo> info;
    _bstr_t version(L"Version");
    wchar_t* name = version;
    DISPID id = 0;
    DISPPARAMS none = {};
    EXPECT_EQ(control->GetTypeInfo(0, 0, nullptr), E_POINTER);
    EXPECT_EQ(control->GetTypeInfo(1, 0, &info), DISP_E_BADINDEX);
    EXPECT_EQ(control->GetIDsOfNames(IID_IDispatch, &name, 1, 0, &id), DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_POINTER);
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, &name, 1, 0, nullptr), E_POINTER);
    EXPECT_EQ(control->Invoke(7, IID_IDispatch, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
}

}  // namespace
}  // namespace kel
