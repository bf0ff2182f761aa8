// A program as a table describes it, and what was found of it.
#pragma once

#include <span>
#include <string>

namespace kel {

/// By what a product is looked for.
enum class FindBy {
    UpgradeCode,   ///< the installer's products of an upgrade code
    UninstallKey,  ///< an entry in the list of installed programs, by its key's name
    DisplayName,   ///< such entries by their display name, and publisher
    AppPath,  ///< the program that the shell starts for a list of file names; without one, for the product's
              ///< own
    StartMenu,   ///< a browser's entry in the list of Internet clients
    Registered,  ///< a registered application, and what it opens "https" with
    Key,         ///< a key of the maker's own
    ValueNames,  ///< a key whose values are named after the versions that are there
    Release,     ///< the .NET Framework's key, with its release number
    Folder,      ///< a folder that the product has had since ever
    Family,      ///< a family of packages
};

/// One place to look at.
struct Locator {
    FindBy by;
    /// The code, key, name, folder or family. Names of entries may be patterns that end in "*"; in a key, "*"
    /// stands for all subkeys; folders begin with a variable of the environment.
    const wchar_t* where = L"";
    /// Of a display name, the publisher, which may be a pattern; of a key, the value that names a folder or a
    /// file.
    const wchar_t* value = L"";
    /// Of a key, the folder of the program: below the one that the value names, or of its own; in the latter
    /// "*" stands for the version that the key tells, or that one of its values is named after.
    const wchar_t* folder = L"";
    /// Of a key, the values that tell the version where it is not the file's, separated by bars.
    const wchar_t* version = L"";
};

/// A row of a table. Lists are separated by bars.
struct Product {
    unsigned existsId;   ///< under which it is stored whether the product is there; 0 for nowhere
    unsigned versionId;  ///< and its version; 0 for nowhere
    const wchar_t* name;
    const wchar_t* programs;  ///< paths below the folder of an installation; without one there is none
    std::span<const Locator> locators;
    const wchar_t* channels = L"";    ///< folders of what is not the stable product; may be patterns
    const wchar_t* programIds = L"";  ///< of a browser, how the ids begin that open addresses with it
};

/// Who told a version; earlier ones are better.
enum class VersionFrom { File, Installer, Entry };

/// A place where a product is installed.
struct Installation {
    std::wstring version;  ///< a dotted number; empty when unknown
    VersionFrom from = VersionFrom::File;
    const wchar_t* source = L"";  ///< what it was found by, for the log
};

}  // namespace kel
