#include <gmock/gmock.h>
#include <olectl.h>
#include <shlwapi.h>

#include <regex>

#include "client/ControlDll.h"
#include "support/ScratchKey.h"
#include "values/Text.h"

namespace kel {
namespace {

using testing::HasSubstr;

/// Registered classes, with # for the class id and @ for the path of the DLL.
std::wstring Classes(const test::ScratchKey& root, const std::wstring& folder)
{
    std::wstring text = root.Dump(folder);
    ReplaceAll(text, L"{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}", L"#");
    ReplaceAll(text, KEL_DLL_PATH, L"@");
    return text;
}

struct Way {
    HKEY root;
    const wchar_t* folder;
    HRESULT (*run)(const test::ControlDll& dll, bool install);
};

class Registration : public testing::TestWithParam<Way> {};

TEST_P(Registration, IsCompleteAndLeavesNothing)
{
    const test::ControlDll dll;
    const auto run = [&dll](bool install) { return GetParam().run(dll, install); };
    test::ScratchKey root;
    const std::wstring folder = GetParam().folder;
    root.Write(folder + L"CLSID\\{other}", L"", L"stays");
    root.StandFor(GetParam().root);
    const std::wstring before = Classes(root, folder);
    ASSERT_EQ(run(true), S_OK);
    const std::wstring after = Classes(root, folder);
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

    ASSERT_EQ(run(true), S_OK);
    EXPECT_EQ(Classes(root, folder), after);
    ASSERT_EQ(run(false), S_OK);
    // The system makes these, and leaves them empty.
    EXPECT_EQ(std::regex_replace(Classes(root, folder), std::wregex(L"\\[(Interface|Type[Ll]ib)\\]\n"), L""),
              before);
    EXPECT_EQ(run(false), S_OK);
}

HRESULT Install(const test::ControlDll& dll, bool install, const wchar_t* commandLine)
{
    return dll.Entry<decltype(DllInstall)>("DllInstall")(install, commandLine);
}

INSTANTIATE_TEST_SUITE_P(Of, Registration,
                         testing::Values(Way{HKEY_CURRENT_USER, L"Software\\Classes\\",
                                             [](const test::ControlDll& dll, bool install) {
                                                 return Install(dll, install, install ? L"USER" : L"user");
                                             }},
                                         Way{HKEY_CLASSES_ROOT, L"",
                                             [](const test::ControlDll& dll, bool install) {
                                                 return Install(dll, install, nullptr);
                                             }},
                                         Way{HKEY_CLASSES_ROOT, L"",
                                             [](const test::ControlDll& dll, bool install) {
                                                 return dll.Entry<decltype(DllRegisterServer)>(
                                                     install ? "DllRegisterServer" : "DllUnregisterServer")();
                                             }}));

}  // namespace
}  // namespace kel
