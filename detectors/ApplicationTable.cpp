#include "detectors/ProductTables.h"

namespace kel {

namespace {

using enum FindBy;

// One installation holds the whole suite; the program files show which parts are installed.
constexpr Locator Office[] = {
    {DisplayName, L"Microsoft 365*", L"Microsoft Corporation"},
    {DisplayName, L"Microsoft Office*", L"Microsoft Corporation"},
    {AppPath},
    {Folder, L"%ProgramFiles%\\Microsoft Office"},
    {Folder, L"%ProgramFiles(x86)%\\Microsoft Office"},
};

constexpr Locator LibreOffice[] = {
    {UpgradeCode, L"{4B17E523-5D91-4E69-BD96-7FD81CFA81BB}"},
    {DisplayName, L"LibreOffice *", L"The Document Foundation"},
    {AppPath},
    {Folder, L"%ProgramFiles%\\LibreOffice"},
    {Folder, L"%ProgramFiles(x86)%\\LibreOffice"},
};

// The 64-bit Reader is Acrobat's program without a licence for the other features, and has Acrobat's name.
// The level of the package says which of the two it is; without a level, the name decides.
constexpr const wchar_t* AcrobatKey = L"SOFTWARE\\Adobe\\Adobe Acrobat\\DC\\Installer";
constexpr Condition IsReader = {AcrobatKey, L"SCAPackageLevel", 1, 1, false};
constexpr Condition MayBeReader = {AcrobatKey, L"SCAPackageLevel", 0, 1, true};
constexpr Condition MayBeAcrobat = {AcrobatKey, L"SCAPackageLevel", 2, 0xFFFFFFFF, true};

constexpr Locator AcrobatReader[] = {
    {DisplayName, L"Adobe Acrobat Reader*", L"Adobe*", L"", L"", 0, &MayBeReader},
    {DisplayName, L"Adobe Acrobat (64-bit)", L"Adobe*", L"", L"", 0, &IsReader},
    {DisplayName, L"Adobe Reader*", L"Adobe*"},
    {AppPath, L"AcroRd32.exe"},
    {Folder, L"%ProgramFiles(x86)%\\Adobe\\Acrobat Reader DC"},
    {Folder, L"%ProgramFiles%\\Adobe\\Acrobat DC", L"", L"", L"", 0, &IsReader},
};

constexpr Locator Acrobat[] = {
    {DisplayName, L"Adobe Acrobat*", L"Adobe*", L"", L"", 0, &MayBeAcrobat},
    {AppPath, L"", L"", L"", L"", 0, &MayBeAcrobat},
    {Folder, L"%ProgramFiles%\\Adobe\\Acrobat DC", L"", L"", L"", 0, &MayBeAcrobat},
    {Folder, L"%ProgramFiles(x86)%\\Adobe\\Acrobat DC", L"", L"", L"", 0, &MayBeAcrobat},
};

constexpr Locator SevenZip[] = {
    {UpgradeCode, L"{23170F69-40C1-2702-0000-000004000000}"},
    {UninstallKey, L"7-Zip"},
    {DisplayName, L"7-Zip *", L"Igor Pavlov"},
    {AppPath},
    {Folder, L"%ProgramFiles%\\7-Zip"},
    {Folder, L"%ProgramFiles(x86)%\\7-Zip"},
};

constexpr Locator Vlc[] = {
    {UninstallKey, L"VLC media player"},        {DisplayName, L"VLC media player", L"VideoLAN"}, {AppPath},
    {Folder, L"%ProgramFiles%\\VideoLAN\\VLC"}, {Folder, L"%ProgramFiles(x86)%\\VideoLAN\\VLC"},
};

constexpr Locator QuickTime[] = {
    {DisplayName, L"QuickTime*", L"Apple*"},
    {AppPath},
    {Folder, L"%ProgramFiles(x86)%\\QuickTime"},
};

constexpr Locator ITunes[] = {
    {DisplayName, L"iTunes", L"Apple*"},
    {AppPath},
    {Folder, L"%ProgramFiles%\\iTunes"},
    {Family, L"AppleInc.iTunes_nzyj5cx40ttqa"},
};

constexpr Locator Zoom[] = {
    {UninstallKey, L"ZoomUMX"},        {DisplayName, L"Zoom*", L"Zoom *"},     {AppPath},
    {Folder, L"%ProgramFiles%\\Zoom"}, {Folder, L"%ProgramFiles(x86)%\\Zoom"}, {Folder, L"%APPDATA%\\Zoom"},
};

constexpr Locator Teams[] = {
    {UninstallKey, L"Teams"},
    {DisplayName, L"Microsoft Teams*", L"Microsoft*"},
    {Folder, L"%LOCALAPPDATA%\\Microsoft\\Teams"},
    {Family, L"MSTeams_8wekyb3d8bbwe"},
};

constexpr Locator OneDrive[] = {
    {UninstallKey, L"OneDriveSetup.exe"},
    {DisplayName, L"Microsoft OneDrive", L"Microsoft Corporation"},
    {AppPath},
    {Folder, L"%LOCALAPPDATA%\\Microsoft\\OneDrive"},
    {Folder, L"%ProgramFiles%\\Microsoft OneDrive"},
};

constexpr Locator Steam[] = {
    {UninstallKey, L"Steam"},
    {DisplayName, L"Steam", L"Valve*"},
    {AppPath},
    {Folder, L"%ProgramFiles(x86)%\\Steam"},
};

constexpr Locator JavaKit[] = {
    {DisplayName, L"Java SE Development Kit*", L"Oracle*"},
    {DisplayName, L"Java(TM) SE Development Kit*", L"Oracle*"},
    {DisplayName, L"Eclipse Temurin JDK*", L"Eclipse*"},
    {Key, L"SOFTWARE\\JavaSoft\\JDK\\*", L"JavaHome"},
    {Key, L"SOFTWARE\\JavaSoft\\Java Development Kit\\*", L"JavaHome"},
    {Key, L"SOFTWARE\\Eclipse Adoptium\\JDK\\*\\hotspot\\MSI", L"Path"},
    {Key, L"SOFTWARE\\Microsoft\\JDK\\*\\hotspot\\MSI", L"Path"},
    {Key, L"SOFTWARE\\Azul Systems\\Zulu\\*", L"InstallationPath"},
    {Key, L"SOFTWARE\\Azul Systems\\Zulu 32-bit\\*", L"InstallationPath"},
    {Key, L"SOFTWARE\\BellSoft\\Liberica\\*", L"InstallationPath"},
    {Key, L"SOFTWARE\\Semeru\\JDK\\*\\openj9\\MSI", L"Path"},
    {Key, L"SOFTWARE\\Amazon Corretto\\*", L"Path|InstallationPath|JavaHome"},
    {Key, L"SOFTWARE\\Amazon Corretto\\JDK\\*", L"Path|InstallationPath|JavaHome"},
};

constexpr Locator VisualStudioCode[] = {
    {UninstallKey, L"{EA457B21-F73E-494C-ACAB-524FDE069978}_is1"},
    {UninstallKey, L"{771FD6B0-FA20-440A-A002-3B3BAC16DC50}_is1"},
    {DisplayName, L"Microsoft Visual Studio Code", L"Microsoft Corporation"},
    {DisplayName, L"Microsoft Visual Studio Code (User)", L"Microsoft Corporation"},
    {AppPath},
    {Folder, L"%ProgramFiles%\\Microsoft VS Code"},
    {Folder, L"%LOCALAPPDATA%\\Programs\\Microsoft VS Code"},
};

// The folder of each Office release: since 2016, 2016 and 2013 by the installer, 2010.
constexpr Product Applications[] = {
    {73210, 73211, L"Word",
     L"root\\Office16\\WINWORD.EXE|Office16\\WINWORD.EXE|Office15\\WINWORD.EXE|Office14\\WINWORD.EXE",
     Office},
    {73212, 73213, L"Excel",
     L"root\\Office16\\EXCEL.EXE|Office16\\EXCEL.EXE|Office15\\EXCEL.EXE|Office14\\EXCEL.EXE", Office},
    {73214, 73215, L"PowerPoint",
     L"root\\Office16\\POWERPNT.EXE|Office16\\POWERPNT.EXE|Office15\\POWERPNT.EXE|Office14\\POWERPNT.EXE",
     Office},
    {73216, 73217, L"Outlook",
     L"root\\Office16\\OUTLOOK.EXE|Office16\\OUTLOOK.EXE|Office15\\OUTLOOK.EXE|Office14\\OUTLOOK.EXE",
     Office},
    {73218, 73219, L"Access",
     L"root\\Office16\\MSACCESS.EXE|Office16\\MSACCESS.EXE|Office15\\MSACCESS.EXE|Office14\\MSACCESS.EXE",
     Office},
    {73220, 73221, L"LibreOffice", L"program\\soffice.exe", LibreOffice, L"LibreOfficeDev*"},
    {73222, 73223, L"Acrobat Reader", L"Reader\\AcroRd32.exe|Acrobat\\Acrobat.exe", AcrobatReader},
    {73224, 73225, L"Acrobat", L"Acrobat\\Acrobat.exe", Acrobat},
    {73226, 73227, L"7-Zip", L"7zFM.exe", SevenZip},
    {73228, 73229, L"VLC", L"vlc.exe", Vlc},
    {73230, 73231, L"QuickTime", L"QuickTimePlayer.exe", QuickTime},
    {73232, 73233, L"iTunes", L"iTunes.exe", ITunes},
    {73234, 73235, L"Zoom", L"bin\\Zoom.exe", Zoom},
    {73236, 73237, L"Teams", L"ms-teams.exe|current\\Teams.exe", Teams},
    {73238, 73239, L"OneDrive", L"OneDrive.exe", OneDrive},
    {73240, 73241, L"Steam", L"steam.exe", Steam},
    {73242, 73243, L"Java development kit", L"bin\\javac.exe", JavaKit},
    {73244, 73245, L"Visual Studio Code", L"Code.exe", VisualStudioCode, L"Microsoft VS Code Insiders"},
};

}  // namespace

std::span<const Product> ApplicationTable()
{
    return Applications;
}

}  // namespace kel
