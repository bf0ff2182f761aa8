#include <gmock/gmock.h>
#include <olectl.h>
#include <shlwapi.h>

#include <functional>
#include <regex>

#include "client/ControlDll.h"
#include "support/ScratchKey.h"
#include "values/Text.h"

namespace kel {
namespace {

using testing::HasSubstr;

/// All below a key, with # for the class id and @ for the path of the DLL.
std::wstring Dump(const test::ScratchKey& root)
{
    std::wstring text = root.Dump();
    ReplaceAll(text, L"{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}", L"#");
    ReplaceAll(text, KEL_DLL_PATH, L"@");
    ReplaceAll(text, L"[Software\\Classes\\", L"[");
    return text;
}

using Call = std::function<HRESULT()>;

struct Registration : testing::Test {
    const test::ControlDll dll;
    decltype(DllInstall)* const install = dll.Entry<decltype(DllInstall)>("DllInstall");

    /// Registers under a key that stands for a predefined one, twice, and takes it back, twice.
    /// @param classes where the classes stand below the key
    void Check(HKEY predefined, const std::wstring& classes, const Call& add, const Call& remove) const;
};

void Registration::Check(HKEY predefined, const std::wstring& classes, const Call& add,
                         const Call& remove) const
{
    const test::ScratchKey root(predefined);
    root.Write(classes + L"CLSID\\{other}", L"", L"stays");
    const std::wstring before = Dump(root);
    ASSERT_EQ(add(), S_OK);
    const std::wstring after = Dump(root);
    EXPECT_THAT(after, HasSubstr(L"[CLSID\\#]\n=SysInfo Class\nAppID=#\n"
                                 L"[CLSID\\#\\Control]\n"
                                 L"[CLSID\\#\\InprocServer32]\n=@\nThreadingModel=Apartment\n"
                                 L"[CLSID\\#\\MiscStatus]\n=0\n[CLSID\\#\\MiscStatus\\1]\n=1024\n"
                                 L"[CLSID\\#\\ProgID]\n=KELDetection_TAMS64.SysInfo.1\n"
                                 L"[CLSID\\#\\Programmable]\n"
                                 L"[CLSID\\#\\ToolboxBitmap32]\n=@, 102\n"
                                 L"[CLSID\\#\\TypeLib]\n={386EBC54-4F11-4853-BB50-316281E41CFF}\n"
                                 L"[CLSID\\#\\Version]\n=1.0\n"
                                 L"[CLSID\\#\\VersionIndependentProgID]\n=KELDetection_TAMS64.SysInfo\n"));
    EXPECT_THAT(after, HasSubstr(L"[KELDetection_TAMS64.SysInfo.1]\n=SysInfo Class\n"
                                 L"[KELDetection_TAMS64.SysInfo.1\\CLSID]\n=#\n"));
    EXPECT_THAT(after, HasSubstr(L"[KELDetection_TAMS64.SysInfo]\n=SysInfo Class\n"
                                 L"[KELDetection_TAMS64.SysInfo\\CLSID]\n=#\n"
                                 L"[KELDetection_TAMS64.SysInfo\\CurVer]\n=KELDetection_TAMS64.SysInfo.1\n"));
    EXPECT_THAT(after, HasSubstr(L"ib\\{386EBC54-4F11-4853-BB50-316281E41CFF}\\1.0\\409\\win64]\n=@\n"));

    EXPECT_THAT(after, HasSubstr(L"[Interface\\{6F1D2B84-3A5C-4E97-B0D8-52C7A9E4F613}]\n=ISysInfo\n"));

    ASSERT_EQ(add(), S_OK);
    for (const BOOL isOn : {TRUE, FALSE})
        EXPECT_EQ(install(isOn, L"usr"), E_INVALIDARG);
    EXPECT_EQ(Dump(root), after);
    ASSERT_EQ(remove(), S_OK);
    // The system makes these, and leaves them empty.
    EXPECT_EQ(std::regex_replace(Dump(root), std::wregex(L"\\[(Interface|Type[Ll]ib)\\]\n"), L""), before);
    EXPECT_EQ(remove(), S_OK);
}

TEST_F(Registration, IsCompleteAndLeavesNothing)
{
    Check(
        HKEY_CURRENT_USER, L"Software\\Classes\\", [this] { return install(TRUE, L"USER"); },
        [this] { return install(FALSE, L"user"); });
    // The classes root is all users' again, and not the user's key of before, which is gone.
    EXPECT_NE(OpenKey(HKEY_CLASSES_ROOT, L"CLSID", KEY_READ), nullptr);
    Check(
        HKEY_CLASSES_ROOT, L"", [this] { return install(TRUE, nullptr); },
        [this] { return install(FALSE, L""); });
    Check(HKEY_CLASSES_ROOT, L"", dll.Entry<decltype(DllRegisterServer)>("DllRegisterServer"),
          dll.Entry<decltype(DllUnregisterServer)>("DllUnregisterServer"));
}

}  // namespace
}  // namespace kel
