#include "probes/software/SoftwareFunctions.h"

#include <msi.h>
#include <shlwapi.h>

#include "diag/Log.h"
#include "platform/Library.h"
#include "platform/WindowsVersion.h"
#include "probes/system/WindowsInfo.h"

namespace kel {

namespace {

constexpr DWORD RecordSize = 1024;      // bytes; the version stands in the first hundred
constexpr DWORD MaxTextLength = 32768;  // characters, of an expanded text and of a path
constexpr UINT32 MaxPackages = 64;
constexpr UINT32 MaxNamesLength = 64 * 1024;  // characters, of all packages of a family

std::wstring Expand(const std::wstring& text)
{
    if (text.find(L'%') == std::wstring::npos)
        return text;
    std::wstring expanded(MaxTextLength, L'\0');
    const DWORD size = ExpandEnvironmentStringsW(text.c_str(), expanded.data(), MaxTextLength);
    expanded.resize(size > 0 && size <= MaxTextLength ? size - 1 : 0);
    return expanded;
}

std::vector<BYTE> ReadVersionRecord(const wchar_t* path)
{
    static auto* const getRecord =
        PermanentFunction<BOOL WINAPI(LPCWSTR, DWORD, DWORD, LPVOID)>(L"version.dll", "GetFileVersionInfoW");
    // The system cuts a record that does not fit. Asking for its size would open the file twice.
    std::vector<BYTE> record(RecordSize);
    if (getRecord == nullptr || !getRecord(path, 0, RecordSize, record.data()))
        record.clear();
    return record;
}

UINT GetRelatedProduct(const wchar_t* upgradeCode, DWORD index, wchar_t* product)
{
    static auto* const enumerate =
        PermanentFunction<decltype(MsiEnumRelatedProductsW)>(L"msi.dll", "MsiEnumRelatedProductsW");
    return enumerate != nullptr ? enumerate(upgradeCode, 0, index, product) : ERROR_NO_MORE_ITEMS;
}

UINT GetProductProperty(const wchar_t* product, const wchar_t* property, wchar_t* text, DWORD* size)
{
    static auto* const getInfo =
        PermanentFunction<decltype(MsiGetProductInfoW)>(L"msi.dll", "MsiGetProductInfoW");
    return getInfo != nullptr ? getInfo(product, property, text, size) : ERROR_UNKNOWN_PROPERTY;
}

std::vector<std::wstring> GetPackages(const wchar_t* family)
{
    static auto* const getPackages = FindLoadedFunction<LONG WINAPI(PCWSTR, UINT32*, PWSTR*, UINT32*, PWSTR)>(
        L"kernel32.dll", "GetPackagesByPackageFamily");
    UINT32 count = 0;
    UINT32 size = 0;
    if (getPackages == nullptr ||
        getPackages(family, &count, nullptr, &size, nullptr) != ERROR_INSUFFICIENT_BUFFER ||
        count > MaxPackages || size > MaxNamesLength)
        return {};
    std::vector<PWSTR> names(count);
    std::wstring characters(size, L'\0');
    if (getPackages(family, &count, names.data(), &size, characters.data()) != ERROR_SUCCESS)
        return {};
    return {names.begin(), names.begin() + count};
}

std::wstring GetPackageFolder(const wchar_t* fullName)
{
    static auto* const getPath =
        FindLoadedFunction<LONG WINAPI(PCWSTR, UINT32*, PWSTR)>(L"kernel32.dll", "GetPackagePathByFullName");
    UINT32 size = MaxTextLength;
    std::wstring path(size, L'\0');
    if (getPath == nullptr || getPath(fullName, &size, path.data()) != ERROR_SUCCESS)
        return {};
    return path.substr(0, path.find(L'\0'));
}

std::wstring GetProgramId(const wchar_t* protocol)
{
    static auto* const query =
        PermanentFunction<decltype(AssocQueryStringW)>(L"shlwapi.dll", "AssocQueryStringW");
    constexpr auto ProgramId = static_cast<ASSOCSTR>(20);  // ASSOCSTR_PROGID
    constexpr ASSOCF IsProtocol = 0x1000;                  // ASSOCF_IS_PROTOCOL
    std::wstring id(MAX_PATH, L'\0');
    DWORD size = MAX_PATH;
    if (query == nullptr || query(IsProtocol, ProgramId, protocol, nullptr, id.data(), &size) != S_OK)
        return {};
    return id.substr(0, id.find(L'\0'));
}

DWORD GetWindowsBuild()
{
    const std::optional<OSVERSIONINFOEXW> version = ReadWindowsVersion();
    return version ? version->dwBuildNumber : 0;
}

USHORT GetProgramMachine()
{
    static const bool isArm = ReadNativeMachine(OSFunctions::OfSystem()) == IMAGE_FILE_MACHINE_ARM64;
    return isArm ? IMAGE_FILE_MACHINE_ARM64 : IMAGE_FILE_MACHINE_AMD64;
}

std::wstring GetHostProgram()
{
    std::wstring path(MaxTextLength, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MaxTextLength));
    return path;
}

}  // namespace

SoftwareFunctions SoftwareFunctions::OfSystem()
{
    SoftwareFunctions functions;
    functions.openKey = &OpenKey;
    functions.expand = &Expand;
    functions.driveType = &GetDriveTypeW;
    functions.fileAttributes = &GetFileAttributesW;
    functions.versionRecord = &ReadVersionRecord;
    functions.relatedProduct = &GetRelatedProduct;
    functions.productInfo = &GetProductProperty;
    functions.packages = &GetPackages;
    functions.packageFolder = &GetPackageFolder;
    functions.programId = &GetProgramId;
    functions.windowsBuild = &GetWindowsBuild;
    functions.programMachine = &GetProgramMachine;
    functions.hostProgram = &GetHostProgram;
    return functions;
}

}  // namespace kel
