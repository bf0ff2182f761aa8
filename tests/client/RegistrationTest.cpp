#include <gmock/gmock.h>
#include <shlwapi.h>

#include <regex>

#include "client/ControlDll.h"
#include "support/ScratchKey.h"
#include "values/Text.h"

namespace kel {
namespace {

/// All below a key, with # for the class id and @ for the path of the DLL.
std::wstring Dump(const test::ScratchKey& root)
{
    std::wstring text = root.Dump();
    ReplaceAll(text, L"{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}", L"#");
    ReplaceAll(text, KEL_DLL_PATH, L"@");
    ReplaceAll(text, L"[Software\\Classes\\", L"[");
    return text;
}

constexpr const wchar_t* Registered[] = {
    L"[CLSID\\#]\n=SysInfo Class\nAppID=#\n[CLSID\\#\\Control]\n"
    L"[CLSID\\#\\InprocServer32]\n=@\nThreadingModel=Apartment\n"
    L"[CLSID\\#\\MiscStatus]\n=0\n[CLSID\\#\\MiscStatus\\1]\n=1024\n"
    L"[CLSID\\#\\ProgID]\n=KELDetection_TAMS64.SysInfo.1\n[CLSID\\#\\Programmable]\n"
    L"[CLSID\\#\\ToolboxBitmap32]\n=@, 102\n[CLSID\\#\\TypeLib]\n={386EBC54-4F11-4853-BB50-316281E41CFF}\n"
    L"[CLSID\\#\\Version]\n=1.0\n[CLSID\\#\\VersionIndependentProgID]\n=KELDetection_TAMS64.SysInfo\n",
    L"[KELDetection_TAMS64.SysInfo.1]\n=SysInfo Class\n[KELDetection_TAMS64.SysInfo.1\\CLSID]\n=#\n",
    L"[KELDetection_TAMS64.SysInfo]\n=SysInfo Class\n[KELDetection_TAMS64.SysInfo\\CLSID]\n=#\n"
    L"[KELDetection_TAMS64.SysInfo\\CurVer]\n=KELDetection_TAMS64.SysInfo.1\n",
    L"ib\\{386EBC54-4F11-4853-BB50-316281E41CFF}\\1.0\\409\\win64]\n=@\n",
    L"[Interface\\{6F1D2B84-3A5C-4E97-B0D8-52C7A9E4F613}]\n=ISysInfo\n",
};

TEST(Registration, IsCompleteAndLeavesNothing)
{
    const test::ControlDll dll;
    const auto install = dll.Entry<decltype(DllInstall)>("DllInstall");
    for (const auto& [predefined, classes, whom] :
         {std::tuple(HKEY_CURRENT_USER, std::wstring(L"Software\\Classes\\"), L"user"),
          {HKEY_CLASSES_ROOT, L"", L""}}) {
        // Also after a registration for the user, whose key of then is gone.
        EXPECT_NE(OpenKey(HKEY_CLASSES_ROOT, L"CLSID", KEY_READ), nullptr);
        const test::ScratchKey root(predefined);
        root.Write(classes + L"CLSID\\{other}", L"", L"stays");
        const std::wstring before = Dump(root);
        ASSERT_EQ(install(TRUE, whom), S_OK);
        const std::wstring after = Dump(root);
        for (const wchar_t* const keys : Registered)
            EXPECT_THAT(after, testing::HasSubstr(keys));
        ASSERT_EQ(install(TRUE, whom), S_OK);
        EXPECT_EQ(Dump(root), after);
        ASSERT_EQ(install(FALSE, whom), S_OK);
        // The system makes these, and leaves them empty.
        const std::wregex system(L"\\[(Interface|Type[Ll]ib)\\]\n");
        EXPECT_EQ(std::regex_replace(Dump(root), system, L""), before);
        EXPECT_EQ(install(FALSE, whom), S_OK);
    }
    EXPECT_NE(FindResourceW(dll.Handle(), MAKEINTRESOURCEW(102), MAKEINTRESOURCEW(2)),
              nullptr);  // the bitmap
}

}  // namespace
}  // namespace kel
