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

/// Registers under a key that stands for a predefined one, twice, and takes it back, twice.
/// @param classes where the classes stand below the key
void CheckRegistration(HKEY predefined, const std::wstring& classes, const Call& add, const Call& remove)
{
    const test::ScratchKey root(predefined);
    root.Write(classes + L"CLSID\\{other}", L"", L"stays");
    const std::wstring before = Dump(root);
    ASSERT_EQ(add(), S_OK);
    const std::wstring after = Dump(root);
    EXPECT_THAT(after, HasSubstr(L"[CLSID\\#]\n=SysInfo Class\nAppID=#\n"
                                 L"[CLSID\\#\\Control]\n"
                                 L"[CLSID\\#\\InprocServer32]\n=@\nThreadingModel=Apartment\n"
                                 L"[CLSID\\#\\MiscStatus]\n=0\n[CLSID\\#\\MiscStatus\\1]\n=132096\n"
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

    ASSERT_EQ(add(), S_OK);
    EXPECT_EQ(Dump(root), after);
    ASSERT_EQ(remove(), S_OK);
    // The system makes these, and leaves them empty.
    EXPECT_EQ(std::regex_replace(Dump(root), std::wregex(L"\\[(Interface|Type[Ll]ib)\\]\n"), L""), before);
    EXPECT_EQ(remove(), S_OK);
}

TEST(Registration, IsCompleteAndLeavesNothing)
{
    const test::ControlDll dll;
    const auto install = dll.Entry<decltype(DllInstall)>("DllInstall");
    CheckRegistration(
        HKEY_CURRENT_USER, L"Software\\Classes\\", [&] { return install(TRUE, L"USER"); },
        [&] { return install(FALSE, L"user"); });
    CheckRegistration(
        HKEY_CLASSES_ROOT, L"", [&] { return install(TRUE, nullptr); },
        [&] { return install(FALSE, nullptr); });
    CheckRegistration(HKEY_CLASSES_ROOT, L"", dll.Entry<decltype(DllRegisterServer)>("DllRegisterServer"),
                      dll.Entry<decltype(DllUnregisterServer)>("DllUnregisterServer"));
}

}  // namespace
}  // namespace kel
