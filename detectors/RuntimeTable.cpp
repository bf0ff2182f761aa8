#include "detectors/Facts.h"
#include "detectors/ProductTables.h"

namespace kel {

namespace {

using enum FindBy;

constexpr Locator Cpp64[] = {
    {Key, L"SOFTWARE\\Microsoft\\VisualStudio\\14.0\\VC\\Runtimes\\x64", L"", L"%SystemRoot%\\System32"},
};
constexpr Locator Cpp32[] = {
    {Key, L"SOFTWARE\\Microsoft\\VisualStudio\\14.0\\VC\\Runtimes\\x86", L"", L"%SystemRoot%\\SysWOW64"},
};

constexpr Locator Framework4[] = {
    {Release, L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP\\v4\\Full", L"",
     L"%SystemRoot%\\Microsoft.NET\\Framework64\\v4.0.30319", L"Version"},
};

// Each installed version has a value below the key of its framework, and a folder.
constexpr Locator DotNet[] = {
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\x64\\sharedfx\\Microsoft.NETCore.App", L"",
     L"%ProgramFiles%\\dotnet\\shared\\Microsoft.NETCore.App\\*"},
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\x86\\sharedfx\\Microsoft.NETCore.App", L"",
     L"%ProgramFiles(x86)%\\dotnet\\shared\\Microsoft.NETCore.App\\*"},
};
constexpr Locator DotNetDesktop[] = {
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\x64\\sharedfx\\Microsoft.WindowsDesktop.App",
     L"", L"%ProgramFiles%\\dotnet\\shared\\Microsoft.WindowsDesktop.App\\*"},
    {ValueNames, L"SOFTWARE\\dotnet\\Setup\\InstalledVersions\\x86\\sharedfx\\Microsoft.WindowsDesktop.App",
     L"", L"%ProgramFiles(x86)%\\dotnet\\shared\\Microsoft.WindowsDesktop.App\\*"},
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

constexpr Product Runtimes[] = {
    {NotStored, 72910, L"Visual C++ x64", L"vcruntime140.dll", Cpp64},
    {NotStored, 72911, L"Visual C++ x86", L"vcruntime140.dll", Cpp32},
    {NotStored, 72920, L".NET Framework 4", L"clr.dll", Framework4},
    {NotStored, 72921, L".NET runtime", L"Microsoft.NETCore.App.deps.json", DotNet},
    {NotStored, 72922, L".NET desktop runtime", L"Microsoft.WindowsDesktop.App.deps.json", DotNetDesktop},
    {NotStored, 72930, L"WebView2", L"msedgewebview2.exe", WebView2},
    {NotStored, 72940, L"Java", L"bin\\java.exe", Java},
    {NotStored, 72950, L"PowerShell", L"pwsh.exe|powershell.exe", PowerShell},
    {72960, NotStored, L"media features", L"mfplat.dll", MediaFeatures},
};

}  // namespace

std::span<const Product> RuntimeTable()
{
    return Runtimes;
}

}  // namespace kel
