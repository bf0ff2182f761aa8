// A program as a table describes it, and an installation that was found.
#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace kel {

/// How a product is looked for.
enum class FindBy {
    UpgradeCode,   ///< the installer's products of an upgrade code
    UninstallKey,  ///< an entry in the list of installed programs, by its key's name
    DisplayName,   ///< such entries by their display name, and publisher
    AppPath,  ///< the program that the shell starts for a list of file names; without one, for the product's
              ///< own
    StartMenu,   ///< a browser's entry in the list of Internet clients
    Registered,  ///< a registered application, and what it opens "https" with
    Key,         ///< a key of the vendor's own
    AllFiles,    ///< a folder that has all of the product's programs
    ValueNames,  ///< a key whose values are named after the installed versions
    Release,     ///< the .NET Framework's key, with its release number
    Folder,      ///< a folder that the product has always had
    Family,      ///< a family of packages
};

/// A number in the registry that decides which product a program is.
struct Condition {
    const wchar_t* key;
    const wchar_t* value;
    DWORD min;
    DWORD max;
    bool isMetWithout;  ///< whether it is met when there is no such number
};

/// One place to look at.
struct Locator {
    FindBy by;
    /// The code, key, name, folder or family. Names of entries may be patterns that end in "*"; in a key, "*"
    /// stands for all subkeys; folders begin with a variable of the environment.
    const wchar_t* where = L"";
    /// For a display name, the publisher, which may be a pattern; for a key, the values that may name a
    /// folder or a file, separated by bars.
    const wchar_t* value = L"";
    /// For a key, the folder of the program: relative to the folder that the value names, or an absolute path
    /// in which "*" stands for the version in the key or in the name of one of its values.
    const wchar_t* folder = L"";
    /// For a key, the values that hold the version where it is not the file's, separated by bars.
    const wchar_t* version = L"";
    USHORT machine = 0;  ///< the architecture (IMAGE_FILE_MACHINE_...) of the place; 0 for any
    const Condition* condition = nullptr;  ///< the place counts only if it is met; null for always
};

/// A row of a table. Lists are separated by bars.
struct Product {
    unsigned existsId;   ///< the value id for whether the product is installed; 0 for none
    unsigned versionId;  ///< the value id of its version; 0 for none
    const wchar_t* name;
    const wchar_t* programs;  ///< paths below the folder of an installation; one of them has to exist
    std::span<const Locator> locators;
    const wchar_t* channels = L"";    ///< folders of previews and other channels; may be patterns
    const wchar_t* programIds = L"";  ///< for a browser, prefixes of its program ids for web addresses
    /// For a product without `existsId`, the value id for whether it is installed; stored after the table.
    unsigned companionId = 0;
    bool hasMajors = false;  ///< the newest version of each major one is stored, newest first
};

/// The source of a version; earlier ones are better.
enum class VersionFrom { File, Installer, Entry };

/// A place where a product is installed.
struct Installation {
    std::wstring version;  ///< a dotted number; empty when unknown
    VersionFrom from = VersionFrom::File;
    const wchar_t* source = L"";  ///< how it was found, for the log
    bool is32Bit = false;         ///< its key is one of 32-bit programs
};

}  // namespace kel
