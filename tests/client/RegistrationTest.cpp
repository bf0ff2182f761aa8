#include <gtest/gtest.h>
#include <olectl.h>
#include <shlwapi.h>

#include "client/ControlDll.h"
#include "support/ScratchKey.h"

namespace kel {
namespace {

std::wstring Filled(const wchar_t* text, const std::wstring& path)
{
    std::wstring filled = text;
    for (std::size_t at = filled.find(L'@'); at != std::wstring::npos;
         at = filled.find(L'@', at + path.size()))
        filled.replace(at, 1, path);
    return filled;
}

TEST(Registration, OfTheCurrentUserIsCompleteAndLeavesNothing)
{
    const test::ControlDll dll;
    const auto install = dll.Entry<decltype(DllInstall)>("DllInstall");
    test::ScratchKey user;
    user.Write(L"Software\\Classes\\CLSID\\{other}", L"", L"stays");
    user.StandFor(HKEY_CURRENT_USER);
    const std::wstring before = user.Dump(L"Software\\Classes");
    ASSERT_EQ(install(TRUE, L"USER"), S_OK);
    const std::wstring after = user.Dump(L"Software\\Classes");
    const std::wstring expected = Filled(
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}]\n=SysInfo "
        L"Class\nAppID={3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\Control]\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\InprocServer32]\n=@\nThreadingModel=Apartment\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\MiscStatus]\n=0\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\MiscStatus\\1]\n=132096\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\ProgID]\n=KELDetection_TAMS64.SysInfo.1\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\Programmable]\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\ToolboxBitmap32]\n=@, 102\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\TypeLib]\n={386EBC54-4F11-4853-BB50-316281E41CFF}\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\Version]\n=1.0\n"
        L"[CLSID\\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\\VersionIndependentProgID]\n=KELDetection_TAMS64."
        L"SysInfo\n",
        KEL_DLL_PATH);
    EXPECT_NE(after.find(expected), std::wstring::npos) << after.c_str();
    for (const wchar_t* key :
         {L"[KELDetection_TAMS64.SysInfo.1]\n=SysInfo Class\n"
          L"[KELDetection_TAMS64.SysInfo.1\\CLSID]\n={3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\n",
          L"[KELDetection_TAMS64.SysInfo]\n=SysInfo Class\n"
          L"[KELDetection_TAMS64.SysInfo\\CLSID]\n={3D7C6027-9644-4282-BC8F-AC0BABB38FDB}\n"
          L"[KELDetection_TAMS64.SysInfo\\CurVer]\n=KELDetection_TAMS64.SysInfo.1\n",
          L"ib\\{386EBC54-4F11-4853-BB50-316281E41CFF}\\1.0\\409\\win64]\n"})
        EXPECT_NE(after.find(key), std::wstring::npos) << key << after.c_str();

    ASSERT_EQ(install(TRUE, L"user"), S_OK);
    EXPECT_EQ(user.Dump(L"Software\\Classes"), after);
    ASSERT_EQ(install(FALSE, L"user"), S_OK);
    std::wstring left = user.Dump(L"Software\\Classes");
    for (const wchar_t* shared :
         {L"[Interface]\n", L"[TypeLib]\n", L"[Typelib]\n"}) {  // made by the system, empty
        if (const std::size_t at = left.find(shared); at != std::wstring::npos)
            left.erase(at, std::wcslen(shared));
    }
    EXPECT_EQ(left, before);
    EXPECT_EQ(install(FALSE, L"user"), S_OK);
}

TEST(Registration, ForAllServesTheComLoader)
{
    const test::Apartment apartment;
    const test::ControlDll dll;
    ASSERT_EQ(dll.Entry<decltype(DllRegisterServer)>("DllRegisterServer")(), S_OK);
    Microsoft::WRL::ComPtr<ISysInfo> control;
    CLSID classId = {};
    ASSERT_EQ(CLSIDFromProgID(L"KELDetection_TAMS64.SysInfo", &classId), S_OK);
    ASSERT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control)), S_OK);
    Microsoft::WRL::ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadRegTypeLib(LIBID_DetectionLib, 1, 0, 0x409, &library), S_OK);
}

}  // namespace
}  // namespace kel
