#include <gmock/gmock.h>
#include <shlwapi.h>

#include <regex>

#include "client/ControlDll.h"
#include "support/ScratchKey.h"
#include "values/Text.h"

namespace kel {
namespace {

using testing::HasSubstr;

/// The classes of a user, with # for the class id and @ for the path of the DLL.
std::wstring Classes(const test::ScratchKey& user)
{
    std::wstring text = user.Dump(L"Software\\Classes");
    ReplaceAll(text, L"{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}", L"#");
    ReplaceAll(text, KEL_DLL_PATH, L"@");
    return text;
}

TEST(Registration, OfTheCurrentUserIsCompleteAndLeavesNothing)
{
    const test::ControlDll dll;
    const auto install = dll.Entry<decltype(DllInstall)>("DllInstall");
    test::ScratchKey user;
    user.Write(L"Software\\Classes\\CLSID\\{other}", L"", L"stays");
    user.StandFor(HKEY_CURRENT_USER);
    const std::wstring before = Classes(user);
    ASSERT_EQ(install(TRUE, L"USER"), S_OK);
    const std::wstring after = Classes(user);
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

    ASSERT_EQ(install(TRUE, L"user"), S_OK);
    EXPECT_EQ(Classes(user), after);
    ASSERT_EQ(install(FALSE, L"user"), S_OK);
    // The system makes these, and leaves them empty.
    EXPECT_EQ(std::regex_replace(Classes(user), std::wregex(L"\\[(Interface|Type[Ll]ib)\\]\n"), L""), before);
    EXPECT_EQ(install(FALSE, L"user"), S_OK);
}

}  // namespace
}  // namespace kel
