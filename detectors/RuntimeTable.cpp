#include "detectors/Facts.h"
#include "detectors/ProductTables.h"

namespace kel {

namespace {

using enum FindBy;

// Some installers do not write the key, and some programs ship only the files. If the key says that the
// runtime was removed, a remaining file does not count.
constexpr Condition NotRemoved(const wchar_t* key)
{
    return {key, L"Installed", 1, 0xFFFFFFFF, true};
}

constexpr const wchar_t* Cpp64Key = L"SOFTWARE\\Microsoft\\VisualStudio\\14.0\\VC\\Runtimes\\x64";
constexpr Condition Cpp64NotRemoved = NotRemoved(Cpp64Key);
constexpr Locator Cpp64[] = {
    {Key, Cpp64Key, L"", L"%SystemRoot%\\System32"},
    {Folder, L"%SystemRoot%\\System32", L"", L"", L"", 0, &Cpp64NotRemoved},
};
constexpr const wchar_t* Cpp32Key = L"SOFTWARE\\Microsoft\\VisualStudio\\14.0\\VC\\Runtimes\\x86";
constexpr Condition Cpp32NotRemoved = NotRemoved(Cpp32Key);
constexpr Locator Cpp32[] = {
    {Key, Cpp32Key, L"", L"%SystemRoot%\\SysWOW64"},
    {Folder, L"%SystemRoot%\\SysWOW64", L"", L"", L"", 0, &Cpp32NotRemoved},
};
constexpr const wchar_t* Cpp2013Key = L"SOFTWARE\\Microsoft\\VisualStudio\\12.0\\VC\\Runtimes\\x64";
constexpr Condition Cpp2013NotRemoved = NotRemoved(Cpp2013Key);
constexpr Locator Cpp2013[] = {
    {Key, Cpp2013Key, L"", L"%SystemRoot%\\System32"},
    {Folder, L"%SystemRoot%\\System32", L"", L"", L"", 0, &Cpp2013NotRemoved},
};
constexpr const wchar_t* Cpp2012Key = L"SOFTWARE\\Microsoft\\VisualStudio\\11.0\\VC\\Runtimes\\x64";
constexpr Condition Cpp2012NotRemoved = NotRemoved(Cpp2012Key);
constexpr Locator Cpp2012[] = {
    {Key, Cpp2012Key, L"", L"%SystemRoot%\\System32"},
    {Folder, L"%SystemRoot%\\System32", L"", L"", L"", 0, &Cpp2012NotRemoved},
};
constexpr const wchar_t* Cpp2010Key = L"SOFTWARE\\Microsoft\\VisualStudio\\10.0\\VC\\VCRedist\\x64";
constexpr Condition Cpp2010NotRemoved = NotRemoved(Cpp2010Key);
constexpr Locator Cpp2010[] = {
    {Key, Cpp2010Key, L"", L"%SystemRoot%\\System32"},
    {Folder, L"%SystemRoot%\\System32", L"", L"", L"", 0, &Cpp2010NotRemoved},
};
// Its files are installed side by side with those of other versions, in folders that only the installer
// knows.
constexpr Locator Cpp2008[] = {{UpgradeCode, L"{FDA45DDF-8E17-336F-A3ED-356B7B7C688A}"}};

constexpr Locator Framework4[] = {
    {Release, L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP\\v4\\Full", L"",
     L"%SystemRoot%\\Microsoft.NET\\Framework64\\v4.0.30319", L"Version"},
};

constexpr Locator Framework35[] = {
    {Key, L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP\\v3.5", L"",
     L"%SystemRoot%\\Microsoft.NET\\Framework64\\v3.5", L"Version"},
};

// Each installed version has a value below the key of its framework, and a folder. Programs of other
// architectures than the machine's do not start with it.
constexpr const wchar_t* DotNetFolder = L"%ProgramFiles%\\dotnet\\shared\\Microsoft.NETCore.App\\*";
constexpr const wchar_t* DesktopFolder = L"%ProgramFiles%\\dotnet\\shared\\Microsoft.WindowsDesktop.App\\*";
constexpr const wchar_t* AspNetFolder = L"%ProgramFiles%\\dotnet\\shared\\Microsoft.AspNetCore.App\\*";
constexpr Locator DotNet[] = {
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\x64\\sharedfx\\Microsoft.NETCore.App", L"",
     DotNetFolder, L"", IMAGE_FILE_MACHINE_AMD64},
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\arm64\\sharedfx\\Microsoft.NETCore.App", L"",
     DotNetFolder, L"", IMAGE_FILE_MACHINE_ARM64},
};
constexpr Locator DotNetDesktop[] = {
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\x64\\sharedfx\\Microsoft.WindowsDesktop.App",
     L"", DesktopFolder, L"", IMAGE_FILE_MACHINE_AMD64},
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\arm64\\sharedfx\\Microsoft.WindowsDesktop.App",
     L"", DesktopFolder, L"", IMAGE_FILE_MACHINE_ARM64},
};
constexpr Locator AspNet[] = {
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\x64\\sharedfx\\Microsoft.AspNetCore.App", L"",
     AspNetFolder, L"", IMAGE_FILE_MACHINE_AMD64},
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\arm64\\sharedfx\\Microsoft.AspNetCore.App",
     L"", AspNetFolder, L"", IMAGE_FILE_MACHINE_ARM64},
};

constexpr Locator WebView2[] = {
    {Key, L"SOFTWARE\\Microsoft\\EdgeUpdate\\Clients\\{F3017226-FE2A-4295-8BDF-00C3A9A7E4C5}", L"",
     L"%ProgramFiles(x86)%\\Microsoft\\EdgeWebView\\Application\\*", L"pv"},
    {Key, L"SOFTWARE\\Microsoft\\EdgeUpdate\\Clients\\{F3017226-FE2A-4295-8BDF-00C3A9A7E4C5}", L"",
     L"%LOCALAPPDATA%\\Microsoft\\EdgeWebView\\Application\\*", L"pv"},
    {Key, L"SOFTWARE\\Microsoft\\EdgeUpdate\\ClientState\\{F3017226-FE2A-4295-8BDF-00C3A9A7E4C5}",
     L"EBWebView"},
};

// Since Java 9 the runtime comes with the development kit only.
constexpr Locator Java[] = {
    {Key, L"SOFTWARE\\JavaSoft\\Java Runtime Environment\\*", L"JavaHome"},
    {Key, L"SOFTWARE\\JavaSoft\\JRE\\*", L"JavaHome"},
    {Key, L"SOFTWARE\\JavaSoft\\JDK\\*", L"JavaHome"},
    {Key, L"SOFTWARE\\Eclipse Adoptium\\JRE\\*\\hotspot\\MSI", L"Path"},
    {Key, L"SOFTWARE\\Eclipse Adoptium\\JDK\\*\\hotspot\\MSI", L"Path"},
    {Key, L"SOFTWARE\\Microsoft\\JDK\\*\\hotspot\\MSI", L"Path"},
    {Key, L"SOFTWARE\\Azul Systems\\Zulu\\*", L"InstallationPath"},
    {Key, L"SOFTWARE\\Azul Systems\\Zulu 32-bit\\*", L"InstallationPath"},
    {Key, L"SOFTWARE\\BellSoft\\Liberica\\*", L"InstallationPath"},
    {Key, L"SOFTWARE\\Semeru\\JRE\\*\\openj9\\MSI", L"Path"},
    {Key, L"SOFTWARE\\Semeru\\JDK\\*\\openj9\\MSI", L"Path"},
    {Key, L"SOFTWARE\\Amazon Corretto\\*", L"Path|InstallationPath|JavaHome"},
    {Key, L"SOFTWARE\\Amazon Corretto\\JDK\\*", L"Path|InstallationPath|JavaHome"},
};

// Windows' own PowerShell has the version of Windows in its file and its own in its key; previews have other
// keys.
constexpr Locator PowerShell[] = {
    {Key, L"SOFTWARE\\Microsoft\\PowerShell\\3\\PowerShellEngine", L"",
     L"%SystemRoot%\\System32\\WindowsPowerShell\\v1.0", L"PowerShellVersion"},
    {Key, L"SOFTWARE\\Microsoft\\PowerShell\\1\\PowerShellEngine", L"",
     L"%SystemRoot%\\System32\\WindowsPowerShell\\v1.0", L"PowerShellVersion"},
    {Key, L"SOFTWARE\\Microsoft\\PowerShellCore\\InstalledVersions\\31ab5147-9a97-4452-8443-d9709f0516e1",
     L"InstallLocation", L"", L"SemanticVersion"},
    {Family, L"Microsoft.PowerShell_8wekyb3d8bbwe"},
};

constexpr Locator MediaFeatures[] = {{Folder, L"%SystemRoot%\\System32"}};

// Two libraries that come with the installer of June 2010, and not with Windows.
constexpr Locator DirectX2010[] = {{AllFiles, L"%SystemRoot%\\System32"}};

constexpr bool EachMajor = true;

constexpr Product Runtimes[] = {
    {NotStored, 72910, L"Visual C++ x64", L"vcruntime140.dll", Cpp64, L"", L"", 73540},
    {NotStored, 72911, L"Visual C++ x86", L"vcruntime140.dll", Cpp32, L"", L"", 73541},
    {NotStored, 72920, L".NET Framework 4", L"clr.dll", Framework4, L"", L"", 73542},
    {NotStored, 72921, L".NET runtime", L"Microsoft.NETCore.App.deps.json", DotNet, L"", L"", 73543,
     EachMajor},
    {NotStored, 72922, L".NET desktop runtime", L"Microsoft.WindowsDesktop.App.deps.json", DotNetDesktop, L"",
     L"", 73544, EachMajor},
    {NotStored, 72930, L"WebView2", L"msedgewebview2.exe", WebView2, L"", L"", 73545},
    {NotStored, 72940, L"Java", L"bin\\java.exe", Java, L"", L"", 73546, EachMajor},
    {NotStored, 72950, L"PowerShell", L"pwsh.exe|powershell.exe", PowerShell, L"", L"", 73547},
    {72960, NotStored, L"media features", L"mfplat.dll", MediaFeatures},
    {NotStored, 73520, L"ASP.NET Core", L"Microsoft.AspNetCore.App.deps.json", AspNet, L"", L"", 73548,
     EachMajor},
    {NotStored, 73521, L".NET Framework 3.5", L"MSBuild.exe", Framework35, L"", L"", 73549},
    {NotStored, 73522, L"Visual C++ 2013", L"msvcr120.dll", Cpp2013, L"", L"", 73550},
    {NotStored, 73523, L"Visual C++ 2012", L"msvcr110.dll", Cpp2012, L"", L"", 73551},
    {NotStored, 73524, L"Visual C++ 2010", L"msvcr100.dll", Cpp2010, L"", L"", 73552},
    {NotStored, 73525, L"Visual C++ 2008", L"msvcr90.dll", Cpp2008, L"", L"", 73553},
    {73526, NotStored, L"DirectX of June 2010", L"d3dx9_43.dll|XInput1_3.dll", DirectX2010},
};

}  // namespace

std::span<const Product> RuntimeTable()
{
    return Runtimes;
}

}  // namespace kel
