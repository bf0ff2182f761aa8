#include <comutil.h>
#include <gmock/gmock.h>
#include <objsafe.h>
#include <ocidl.h>
#include <wininet.h>

#include <array>
#include <fstream>
#include <regex>

#include "client/ControlDll.h"
#include "client/Outer.h"
#include "client/PropertyBag.h"

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

    /// Reads a property: its text, or "(null)".
    std::wstring Get(HRESULT (STDMETHODCALLTYPE ISysInfo::*get)(BSTR*)) const
    {
        _bstr_t text;
        EXPECT_EQ((control.Get()->*get)(text.GetAddress()), S_OK);
        const wchar_t* characters = text;
        return characters != nullptr ? characters : L"(null)";
    }

    HRESULT CanUnload() const { return dll.Entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow")(); }
};

TEST_F(Control, HasItsMembersInTheSlotsAndUnderTheIdsThatClientsWereBuiltWith)
{
    IID built = {};
    IIDFromString(L"{6F1D2B84-3A5C-4E97-B0D8-52C7A9E4F613}", &built);
    EXPECT_EQ(built, IID_ISysInfo);
    ComPtr<ITypeLib> library;
    ASSERT_EQ(LoadTypeLibEx(KEL_DLL_PATH, REGKIND_NONE, &library), S_OK);
    ComPtr<ITypeInfo> dispatch, members;
    HREFTYPE reference = 0;
    ASSERT_EQ(library->GetTypeInfoOfGuid(IID_ISysInfo, &dispatch), S_OK);
    ASSERT_EQ(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    ASSERT_EQ(dispatch->GetRefTypeInfo(reference, &members), S_OK);
    constexpr INVOKEKIND Get = INVOKE_PROPERTYGET, Put = INVOKE_PROPERTYPUT, Call = INVOKE_FUNC;
    const std::tuple<const wchar_t*, DISPID, INVOKEKIND, int> rows[] = {
        // with the count of arguments
        {L"Analysis", 1, Get, 4},   {L"Logging", 2, Get, 1},    {L"Logging", 2, Put, 1},
        {L"ReferrerID", 3, Get, 1}, {L"ReferrerID", 3, Put, 1}, {L"SessionID", 4, Get, 1},
        {L"SessionID", 4, Put, 1},  {L"System", 5, Get, 2},     {L"UserID", 6, Get, 1},
        {L"UserID", 6, Put, 1},     {L"Version", 7, Get, 1},    {L"Detect", 8, Call, 0},
        {L"Value", 9, Get, 2},      {L"SysInfo", 10, Get, 1},   {L"SysInfo", 10, Put, 1},
        {L"Debug", 11, Get, 1},     {L"Debug", 11, Put, 1},     {L"Configure", 12, Call, 1},
    };
    UINT index = 0;
    FUNCDESC* member = nullptr;
    for (const auto& [name, id, kind, arguments] : rows) {
        ASSERT_EQ(members->GetFuncDesc(index, &member), S_OK);
        _bstr_t found;
        members->GetDocumentation(member->memid, found.GetAddress(), nullptr, nullptr, nullptr);
        EXPECT_STREQ(found, name);
        EXPECT_EQ(std::tie(member->memid, member->invkind), std::tie(id, kind)) << name;
        EXPECT_EQ(member->cParams, arguments) << name;
        EXPECT_EQ(member->oVft, static_cast<SHORT>((7 + index++) * sizeof(void*))) << name;
        members->ReleaseFuncDesc(member);
    }
    EXPECT_NE(members->GetFuncDesc(index, &member), S_OK);
}

TEST_F(Control, CarriesItsResources)
{
    const HMODULE module = dll.Handle();
    std::array<wchar_t, 20> name = {};
    EXPECT_GT(LoadStringW(module, 100, name.data(), static_cast<int>(name.size())), 0);
    EXPECT_STREQ(name.data(), L"Detection");
    for (const auto& [id, type] : {std::pair(1, L"TYPELIB"), {106, L"REGISTRY"}, {102, MAKEINTRESOURCEW(2)}})
        EXPECT_NE(FindResourceW(module, MAKEINTRESOURCEW(id), type), nullptr) << id;
    const HRSRC version = FindResourceW(module, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(16));
    ASSERT_NE(version, nullptr);
    // The fixed part follows the block's head and name; the file's version stands after two numbers.
    const auto* words = static_cast<const WORD*>(LockResource(LoadResource(module, version)));
    EXPECT_EQ(std::vector<WORD>(words + 24, words + 28), (std::vector<WORD>{5, 4, 0, 1}));
}

TEST_F(Control, FactoryRefusesWhatItCannotMake)
{
    void* nothing = this;
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

TEST_F(Control, CountsObjectsAndLocks)
{
    EXPECT_EQ(CanUnload(), S_FALSE);
    control.Reset();
    EXPECT_EQ(CanUnload(), S_OK);
    dll.Factory()->LockServer(TRUE);
    EXPECT_EQ(CanUnload(), S_FALSE);
    dll.Factory()->LockServer(FALSE);
    EXPECT_EQ(CanUnload(), S_OK);
}

TEST_F(Control, LendsItsInterfacesToAnAggregatingObject)
{
    test::Outer outer;
    ASSERT_EQ(dll.Factory()->CreateInstance(&outer, IID_PPV_ARGS(&outer.inner)), S_OK);
    ASSERT_EQ(outer.QueryInterface(IID_PPV_ARGS(&control)), S_OK);
    EXPECT_EQ(outer.references, 2U);
    EXPECT_EQ(As<IUnknown>().Get(), &outer);
    EXPECT_EQ(Get(&ISysInfo::get_Version), L"4.5.1.0");
    control.Reset();
    EXPECT_EQ(outer.references, 1U);
    outer.inner.Reset();
    EXPECT_EQ(CanUnload(), S_OK);
}

TEST_F(Control, TellsTheSafetyOptionsThatAreSet)
{
    ComPtr<IObjectSafety> safety;
    ASSERT_EQ(control->QueryInterface(IID_IObjectSafety, reinterpret_cast<void**>(safety.GetAddressOf())),
              S_OK);
    DWORD supported = 9, enabled = 9;
    EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, &supported, &enabled), S_OK);
    EXPECT_EQ(supported * 10 + enabled, 30U);
    const std::tuple<IID, DWORD, DWORD, HRESULT, DWORD> rows[] = {
        {IID_IDispatch, 3, 3, S_OK, 3},   {IID_IPersistPropertyBag, 1, 0, S_OK, 2},
        {IID_IDispatch, 4, 4, E_FAIL, 2}, {IID_IDispatch, 7, 1, E_FAIL, 2},
        {IID_IDispatch, 1, 5, S_OK, 3},   {IID_IStream, 3, 0, E_NOINTERFACE, 3},
    };
    for (const auto& [riid, mask, options, result, enabledAfter] : rows) {
        EXPECT_EQ(safety->SetInterfaceSafetyOptions(riid, mask, options), result);
        EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, &supported, &enabled), S_OK);
        EXPECT_EQ(enabled, enabledAfter);
    }
    EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IStream, &supported, &enabled), E_NOINTERFACE);
    EXPECT_EQ(supported + enabled, 0U);
    EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, nullptr, &enabled), E_POINTER);
}

TEST_F(Control, KeepsItsSite)
{
    const auto withSite = As<IObjectWithSite>();
    const auto site = dll.Factory();
    ComPtr<IClassFactory> found;
    EXPECT_EQ(withSite->GetSite(IID_PPV_ARGS(&found)), E_FAIL);
    EXPECT_EQ(withSite->SetSite(site.Get()), S_OK);
    EXPECT_EQ(withSite->GetSite(IID_PPV_ARGS(&found)), S_OK);
    EXPECT_EQ(found.Get(), site.Get());
    EXPECT_EQ(withSite->GetSite(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(withSite->SetSite(nullptr), S_OK);
    EXPECT_EQ(withSite->GetSite(IID_PPV_ARGS(&found)), E_FAIL);
}

TEST_F(Control, LoadsWhatAPageGivesAndSavesNoSession)
{
    const auto persist = As<IPersistPropertyBag>();
    const std::wstring session = Get(&ISysInfo::get_SessionID);
    test::PropertyBag bag, saved;
    EXPECT_EQ(persist->InitNew(), S_OK);
    EXPECT_EQ(persist->Save(&saved, TRUE, TRUE), S_OK);
    EXPECT_TRUE(saved.values.empty());
    bag.values[L"LOGGING"] = L"5";
    EXPECT_EQ(persist->Load(&bag, nullptr), S_OK);
    EXPECT_THAT(bag.reads,
                testing::ElementsAre(L"LOGGING", L"SESSION_ID", L"REFERRER_ID", L"USER_ID", L"DEBUG"));
    EXPECT_EQ(Get(&ISysInfo::get_Logging), L"0");
    EXPECT_EQ(Get(&ISysInfo::get_SessionID), session);

    std::wifstream file(KEL_EXAMPLE_PAGE);
    const std::wstring page{std::istreambuf_iterator<wchar_t>(file), {}};
    const std::wregex parameter(L"<param name=\"(.*?)\" value=\"(.*?)\">");
    for (std::wsregex_iterator found(page.begin(), page.end(), parameter), end; found != end; ++found)
        bag.values[found->str(1)] = found->str(2).c_str();
    bag.values[L"SESSION_ID"] = 42L;
    control->put_Debug(_bstr_t(L"yes"));
    EXPECT_EQ(persist->Load(&bag, nullptr), S_OK);
    EXPECT_EQ(persist->Load(nullptr, nullptr), S_OK);
    EXPECT_EQ(Get(&ISysInfo::get_SessionID), L"42");
    std::map<std::wstring, _variant_t> expected = {{L"REFERRER_ID", L"demo"}, {L"USER_ID", L"visitor"}};
    EXPECT_EQ(persist->Save(&saved, TRUE, TRUE), S_OK);
    EXPECT_EQ(saved.values, expected);
    expected[L"DEBUG"] = L"1";
    control->put_Debug(_bstr_t(L"yes"));
    bag.values[L"DEBUG"] = dll.Factory().Get();  // no text can be made of it: skipped
    EXPECT_EQ(persist->Load(&bag, nullptr), S_OK);
    EXPECT_EQ(persist->Save(&saved, TRUE, TRUE), S_OK);
    EXPECT_EQ(saved.values, expected);
    EXPECT_EQ(persist->Save(nullptr, TRUE, TRUE), E_POINTER);
    CLSID classId = {};
    EXPECT_EQ(persist->GetClassID(&classId), S_OK);
    EXPECT_EQ(classId, CLSID_SysInfo);
}

TEST_F(Control, KeepsAndClearsTextsAsEachMemberDoes)
{
    const auto other = dll.Create();  // all objects share one session
    using Member = std::pair<decltype(&ISysInfo::put_UserID), decltype(&ISysInfo::get_UserID)>;
    const Member referrer(&ISysInfo::put_ReferrerID, &ISysInfo::get_ReferrerID);
    const Member session(&ISysInfo::put_SessionID, &ISysInfo::get_SessionID);
    const Member user(&ISysInfo::put_UserID, &ISysInfo::get_UserID);
    const Member debug(&ISysInfo::put_Debug, &ISysInfo::get_Debug);
    const Member level(&ISysInfo::put_Logging, &ISysInfo::get_Logging);
    const std::tuple<Member, const wchar_t*, const wchar_t*> rows[] = {
        {user, L"u", L"u"},     {user, nullptr, L""},  {session, L"s", L"s"},     {session, nullptr, L"s"},
        {referrer, L"r", L"r"}, {referrer, L"", L"r"}, {referrer, nullptr, L"r"}, {debug, L"x", L"1"},
        {debug, L"0", L"0"},    {debug, L"00", L"1"},  {debug, L"", L"0"},        {level, L"12", L"7"},
        {level, L"3x", L"3"},   {level, L"-2", L"-2"}, {level, L"abc", L"0"},
    };
    for (const auto& [member, put, got] : rows) {
        EXPECT_EQ((other.Get()->*member.first)(_bstr_t(put)), S_OK);
        EXPECT_EQ(Get(member.second), got) << put;
    }
}

TEST_F(Control, TakesNullPointersAndHugeTexts)
{
    for (const HRESULT result :
         {control->get_Version(nullptr), control->get_SysInfo(nullptr), control->get_System(nullptr, nullptr),
          control->get_Value(nullptr, nullptr), control->get_Analysis(nullptr, nullptr, nullptr, nullptr),
          control->Configure(nullptr), control->put_SysInfo(_bstr_t(L"ignored")),
          control->put_Logging(_bstr_t(L"0"))})
        EXPECT_EQ(result, S_OK);
    const std::wstring megabyte(1 << 20, L'<');
    for (const std::wstring& text :
         {megabyte, L"<groups><group id=" + megabyte, L"<user_id>" + megabyte + L"</user_id>"})
        EXPECT_EQ(control->Configure(_bstr_t(text.c_str())), S_OK);
    EXPECT_EQ(Get(&ISysInfo::get_UserID), megabyte);
    EXPECT_EQ(control->GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(control->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, nullptr, nullptr, nullptr),
              E_POINTER);
}

}  // namespace
}  // namespace kel
