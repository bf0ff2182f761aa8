#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <string>
#include <vector>

#include "platform/RegistryValue.h"

namespace kel {

/// The system's functions for installed programs; a test replaces them. None of them installs, repairs or
/// starts anything.
struct SoftwareFunctions {
    boost::function<OwnedKey(HKEY root, const wchar_t* name, REGSAM access)> openKey;
    boost::function<std::wstring(const std::wstring& text)> expand;  ///< variables of the environment
    boost::function<UINT(const wchar_t* root)> driveType;            ///< GetDriveTypeW
    boost::function<DWORD(const wchar_t* path)> fileAttributes;      ///< GetFileAttributesW
    /// The version record of a file; empty when it has none.
    boost::function<std::vector<BYTE>(const wchar_t* path)> versionRecord;
    /// MsiEnumRelatedProductsW: the product code of 38 characters goes into the buffer.
    boost::function<UINT(const wchar_t* upgradeCode, DWORD index, wchar_t* product)> relatedProduct;
    /// MsiGetProductInfoW.
    boost::function<UINT(const wchar_t* product, const wchar_t* property, wchar_t* text, DWORD* size)>
        productInfo;
    /// The full names of the packages of a family that this user has.
    boost::function<std::vector<std::wstring>(const wchar_t* family)> packages;
    boost::function<std::wstring(const wchar_t* fullName)> packageFolder;
    /// The program id with which the user opens addresses of a protocol, as the shell resolves it; empty
    /// without one.
    boost::function<std::wstring(const wchar_t* protocol)> programId;
    boost::function<DWORD()> windowsBuild;  ///< the build of Windows, correct in every host; 0 when unknown
    /// The architecture of the programs that count (IMAGE_FILE_MACHINE_...): x64, or ARM64 on such a machine.
    boost::function<USHORT()> programMachine;
    boost::function<std::wstring()> hostProgram;  ///< the path of the program that this process runs

    /// The system's own. Libraries are loaded when they are first needed and stay loaded.
    static SoftwareFunctions OfSystem();
};

}  // namespace kel
