// The programs of five machines, and what is stored of them.
#pragma once

#include "support/PlantedSoftware.h"

namespace kel::test {

inline const SoftwareMachine SoftwareMachines[] = {
    {L"gaming laptop",
     LR"(
CU A:chrome.exe|=C:\Users\Anna\AppData\Local\Google\Chrome\Application\chrome.exe
64 A:chrome.exe|=C:\Program Files\Google\Chrome\Application\chrome.exe
32 A:msedge.exe|=C:\Program Files (x86)\Microsoft\Edge\Application\msedge.exe
64 Clients\StartMenuInternet\Firefox-308046B0AF4A39CB\shell\open\command|="C:\Program Files\Mozilla Firefox\firefox.exe"
64 Clients\StartMenuInternet\Firefox-6F193CCC56814779\shell\open\command|="D:\Firefox Nightly\firefox.exe"
CU Opera Software|Last GX Install Path=C:\Users\Anna\AppData\Local\Programs\Opera GX\
CU Microsoft\Windows\Shell\Associations\UrlAssociations\https\UserChoice|ProgId=FirefoxURL-308046B0AF4A39CB
64 Classes\FirefoxURL-308046B0AF4A39CB\shell\open\command|="C:\Program Files\Mozilla Firefox\firefox.exe" -osint -url "%1"
32 U:Steam|DisplayName=Steam|Publisher=Valve Corporation|DisplayIcon=C:\Program Files (x86)\Steam\uninstall.exe
CU U:{771FD6B0-FA20-440A-A002-3B3BAC16DC50}_is1|DisplayName=Microsoft Visual Studio Code (User)|DisplayVersion=1.85.1|InstallLocation=D:\Tools\VS Code\
CU U:ZoomUMX|DisplayName=Zoom|DisplayVersion=5.17.1 (28914)|DisplayIcon=C:\Users\Anna\AppData\Roaming\Zoom\bin\Zoom.exe
CU U:{217B4C08-948D-4276-BFBB-BEE930AE5A2C}_is1|DisplayName=Microsoft Visual Studio Code Insiders (User)|InstallLocation=C:\I\
64 U:Anna's diary|DisplayName=Anna's diary|DisplayVersion=44.55|InstallLocation=C:\Diary
64 Microsoft\VisualStudio\14.0\VC\Runtimes\x64|Installed=#1|Version=v14.38.33130.00
64 Microsoft\VisualStudio\14.0\VC\Runtimes\x86|Installed=#1|Version=v14.38.33130.00
64 Microsoft\NET Framework Setup\NDP\v4\Full|Release=#533325|Version=4.8.09032|Install=#1
32 dotnet\Setup\InstalledVersions\x64\sharedfx\Microsoft.NETCore.App|6.0.25=#1|8.0.0=#1|9.0.0-preview.1=#1|7.0.14=#1
32 dotnet\Setup\InstalledVersions\x64\sharedfx\Microsoft.WindowsDesktop.App|8.0.0=#1|6.0.25=#1
32 Microsoft\EdgeUpdate\Clients\{F3017226-FE2A-4295-8BDF-00C3A9A7E4C5}|pv=120.0.2210.91|name=Microsoft Edge WebView2 Runtime
64 Eclipse Adoptium\JRE\21.0.1.12\hotspot\MSI|Path=C:\Program Files\Eclipse Adoptium\jre-21.0.1.12-hotspot\
64 JavaSoft\Java Runtime Environment\1.8.0_391|JavaHome=C:\Program Files\Java\jre-1.8
64 Microsoft\PowerShell\3\PowerShellEngine|PowerShellVersion=5.1.22621.2506
64 Microsoft\PowerShellCore\InstalledVersions\31ab5147-9a97-4452-8443-d9709f0516e1|InstallLocation=C:\Program Files\PowerShell\7\|SemanticVersion=7.4.0
)",
     LR"(
C:\Users\Anna\AppData\Local\Google\Chrome\Application\chrome.exe|119.0.6045.200
C:\Program Files\Google\Chrome\Application\chrome.exe|120.0.6099.130
C:\Program Files (x86)\Microsoft\Edge\Application\msedge.exe|120.0.2210.91
C:\Program Files\Mozilla Firefox\firefox.exe|121.0.0.8758
D:\Firefox Nightly\firefox.exe|123.0.0.1
C:\Users\Anna\AppData\Local\Programs\Opera GX\opera.exe|105.0.0.1
C:\Program Files (x86)\Steam\steam.exe|8.44.21.80
D:\Tools\VS Code\Code.exe|1.85.1.0
C:\I\Code.exe|1.86.0.0
C:\Users\Anna\AppData\Roaming\Zoom\bin\Zoom.exe|5.17.1.28914
C:\Users\Anna\AppData\Local\Microsoft\OneDrive\OneDrive.exe|23.246.1127.2
C:\Program Files\WindowsApps\MSTeams_23320.3021.2567.4799_x64__8wekyb3d8bbwe\ms-teams.exe|23320.3021.2567.4799
C:\Windows\System32\vcruntime140.dll|14.38.33130.0
C:\Windows\SysWOW64\vcruntime140.dll|14.36.32532.0
C:\Windows\Microsoft.NET\Framework64\v4.0.30319\clr.dll|4.8.9181.0
C:\Program Files\dotnet\shared\Microsoft.NETCore.App\8.0.0\Microsoft.NETCore.App.deps.json
C:\Program Files\dotnet\shared\Microsoft.NETCore.App\6.0.25\Microsoft.NETCore.App.deps.json
C:\Program Files\dotnet\shared\Microsoft.NETCore.App\9.0.0-preview.1\Microsoft.NETCore.App.deps.json
C:\Program Files\dotnet\shared\Microsoft.WindowsDesktop.App\6.0.25\Microsoft.WindowsDesktop.App.deps.json
C:\Program Files (x86)\Microsoft\EdgeWebView\Application\120.0.2210.91\msedgewebview2.exe|120.0.2210.91
C:\Program Files\Eclipse Adoptium\jre-21.0.1.12-hotspot\bin\java.exe|21.0.1.0
C:\Program Files\Java\jre-1.8\bin\java.exe|8.0.3910.13
C:\Windows\System32\WindowsPowerShell\v1.0\powershell.exe|10.0.22621.1
C:\Program Files\PowerShell\7\pwsh.exe|7.4.0.500
C:\Windows\System32\mfplat.dll|10.0.22621.1
C:\Games\Anna\launcher.exe|2.0.1.7)",
     L"C:\\Games\\Anna\\launcher.exe",
     LR"(
72910=14.38.33130.0|72911=14.36.32532.0|72920=4.8.1|72921=8.0.0|72922=6.0.25|72930=120.0.2210.91
72940=21.0.1.0|72950=7.4.0|72960=Yes|73000=Yes|73001=3|73002=Firefox|73003=launcher.exe|73004=2.0.1.7
73012=Yes|73013=120.0.2210.91|73014=Yes|73015=119.0.6045.200|73016=Yes|73017=121.0.0.8758|73234=Yes
73235=5.17.1.28914|73236=Yes|73237=23320.3021.2567.4799|73238=Yes|73239=23.246.1127.2|73240=Yes
73241=8.44.21.80|73244=Yes|73245=1.85.1.0)",
     LR"(MSTeams_8wekyb3d8bbwe|MSTeams_23320.3021.2567.4799_x64__8wekyb3d8bbwe|C:\Program Files\WindowsApps\MSTeams_23320.3021.2567.4799_x64__8wekyb3d8bbwe)"},
    {L"old desktop",
     LR"(
64 Microsoft\Internet Explorer|Version=9.11.9600.18376|svcVersion=11.0.9600.18376
64 Clients\StartMenuInternet\IEXPLORE.EXE\shell\open\command|=C:\Program Files\Internet Explorer\iexplore.exe
32 Mozilla\Mozilla Firefox\52.9.0 ESR (x86 en-US)\Main|PathToExe=C:\Program Files (x86)\Mozilla Firefox\firefox.exe
CU Google\Update\ClientState\{8A69D345-D564-463C-AFF1-A69D9E530F96}|UninstallString=C:\Users\Anna\AppData\Local\Google\Chrome\Application\49.0.2623.112\Installer\setup.exe
CU Microsoft\Windows\Shell\Associations\UrlAssociations\https\UserChoice|ProgId=IE.HTTPS
32 U:{90140000-0011-0000-0000-0000000FF1CE}|DisplayName=Microsoft Office Professional 2010|Publisher=Microsoft Corporation|InstallLocation=C:\Program Files (x86)\Microsoft Office\
32 U:{AC76BA86-7AD7-1033-7B44-AB0000000001}|DisplayName=Adobe Reader XI (11.0.10)|Publisher=Adobe Systems Incorporated|InstallLocation=C:\Program Files (x86)\Adobe\Reader 11.0\
32 U:{57752979-A1C9-4C02-856B-FBB27AC4E02C}|DisplayName=QuickTime 7|Publisher=Apple Inc.|DisplayVersion=7.79.80.95|InstallLocation=C:\Program Files (x86)\QuickTime\
64 U:{A2C4A53A-9B1A-4F24-8A6A-0E6AF4CA9FA6}|DisplayName=iTunes|Publisher=Apple Inc.|DisplayVersion=12.1.2.27|InstallLocation=C:\Program Files\iTunes\|DisplayIcon=C:\Windows\Installer\{A2C4A53A-9B1A-4F24-8A6A-0E6AF4CA9FA6}\Installer.ico
32 U:VLC media player|DisplayName=VLC media player|Publisher=VideoLAN|DisplayVersion=2.2.1|UninstallString="C:\Program Files (x86)\VideoLAN\VLC\uninstall.exe"
64 U:LibreOffice|DisplayName=LibreOffice 4.4.3.2|Publisher=The Document Foundation|InstallLocation=C:\Program Files (x86)\LibreOffice 4\
64 Classes\Installer\UpgradeCodes\96F071321C0420720000000040000000|96F071321C0420729002000010000000=
64 Microsoft\Windows\CurrentVersion\Installer\UpgradeCodes\96F071321C0420720000000040000000|96F071321C0420729002000010000000=
64 Classes\Installer\Products\96F071321C0420729002000010000000|ProductName=7-Zip 9.20 (x64 edition)
64 Microsoft\Windows\CurrentVersion\Installer\UserData\S-1-5-18\Products\96F071321C0420729002000010000000\InstallProperties|DisplayName=7-Zip 9.20 (x64 edition)|DisplayVersion=9.20.00.0|LocalPackage=C:\Windows\Installer\1.msi
64 Microsoft\NET Framework Setup\NDP\v4\Full|Release=#394271|Version=4.6.01055
64 JavaSoft\Java Runtime Environment\1.8|JavaHome=C:\Program Files\Java\jre1.8.0_45
64 Microsoft\PowerShell\1\PowerShellEngine|PowerShellVersion=2.0
)",
     LR"(
C:\Program Files\Internet Explorer\iexplore.exe|11.0.9600.18349
C:\Program Files (x86)\Mozilla Firefox\firefox.exe|52.9.0.6746
C:\Users\Anna\AppData\Local\Google\Chrome\Application\chrome.exe|49.0.2623.112
C:\Program Files (x86)\Microsoft Office\Office14\WINWORD.EXE|14.0.7155.5000
C:\Program Files (x86)\Microsoft Office\Office14\EXCEL.EXE|14.0.7153.5000
C:\Program Files (x86)\Microsoft Office\Office14\OUTLOOK.EXE|14.0.7155.5001
C:\Program Files (x86)\Adobe\Reader 11.0\Reader\AcroRd32.exe|11.0.10.32
C:\Program Files (x86)\QuickTime\QuickTimePlayer.exe
C:\Program Files\iTunes\iTunes.exe|12.1.2.27
C:\Program Files (x86)\VideoLAN\VLC\vlc.exe|2.2.1.0
C:\Windows\Microsoft.NET\Framework64\v4.0.30319\clr.dll|4.6.1055.0
C:\Program Files\Java\jre1.8.0_45\bin\java.exe|8.0.450.14
C:\Windows\System32\WindowsPowerShell\v1.0\powershell.exe|6.1.7600.16385
C:\Windows\System32\mfplat.dll|12.0.7600.16385)",
     L"C:\\Program Files\\Internet Explorer\\iexplore.exe",
     LR"(
72920=4.6.1|72940=8.0.450.14|72950=2.0|72960=Yes|73000=Yes|73001=3|73002=Internet Explorer
73003=iexplore.exe|73004=11.0.9600.18349|73010=Yes|73011=11.0.9600.18376|73014=Yes|73015=49.0.2623.112
73016=Yes|73017=52.9.0.6746|73210=Yes|73211=14.0.7155.5000|73212=Yes|73213=14.0.7153.5000|73216=Yes
73217=14.0.7155.5001|73222=Yes|73223=11.0.10.32|73226=Yes|73227=9.20.00.0|73228=Yes|73229=2.2.1.0
73230=Yes|73231=7.79.80.95|73232=Yes|73233=12.1.2.27)"},
    {L"virtual machine",
     LR"(
64 Microsoft\Internet Explorer|Version=9.11.19041.0|svcVersion=11.789.19041.0
32 Microsoft\EdgeUpdate\Clients\{56EB18F8-B008-4CBD-B6D2-8C97FE7E9062}|location=C:\Program Files (x86)\Microsoft\Edge\Application|pv=109.0.1518.78
64 A:chrome.exe|=\\fileserver\apps\Chrome\chrome.exe
CU U:OneDriveSetup.exe|DisplayName=Microsoft OneDrive|Publisher=Microsoft Corporation|DisplayIcon=C:\Users\Anna\AppData\Local\Microsoft\OneDrive\22.1\OneDriveSetup.exe
64 U:{0E49FCED-3C8B-4382-A39B-398B6122D44D}|DisplayName=LibreOffice 24.8.0.3|Publisher=The Document Foundation|DisplayVersion=24.8.0.3|InstallLocation=C:\Program Files\LibreOffice\
64 Microsoft\NET Framework Setup\NDP\v4\Full|Release=#528372|Version=4.8.03752
)",
     LR"(
C:\Program Files\Internet Explorer\iexplore.exe|11.0.19041.1
C:\Program Files (x86)\Microsoft\Edge\Application\msedge.exe|109.0.1518.78
\\fileserver\apps\Chrome\chrome.exe|109.0.5414.75
C:\Program Files\LibreOffice\program\soffice.exe|24.8.0.3
C:\Windows\Microsoft.NET\Framework64\v4.0.30319\clr.dll|4.8.4515.0
C:\Windows\System32\mfplat.dll|10.0.19041.1
C:\Windows\System32\wscript.exe|5.812.10240.16384)",
     L"C:\\Windows\\System32\\wscript.exe",
     LR"(
72920=4.8|72960=Yes|73000=Yes|73001=2|73003=wscript.exe|73004=5.812.10240.16384|73010=Yes
73011=11.789.19041.0|73012=Yes|73013=109.0.1518.78|73220=Yes|73221=24.8.0.3)"},
    {L"tablet",
     LR"(
64 RegisteredApplications|Microsoft Edge=Software\Clients\StartMenuInternet\Microsoft Edge\Capabilities|Paint=SOFTWARE\Microsoft\Windows\CurrentVersion\Applets\Paint\Capabilities
64 Clients\StartMenuInternet\Microsoft Edge\Capabilities\URLAssociations|https=MSEdgeHTM
64 Classes\MSEdgeHTM\shell\open\command|="C:\Program Files (x86)\Microsoft\Edge\Application\msedge.exe" --single-argument %1
CU Clients\StartMenuInternet\Brave.QRSTUVWXYZ\shell\open\command|="C:\Users\Anna\AppData\Local\BraveSoftware\Brave-Browser\Application\brave.exe"
CU Clients\StartMenuInternet\Vivaldi.ABCDEFGHIJ\shell\open\command|="C:\Users\Anna\AppData\Local\Vivaldi Snapshot\Application\vivaldi.exe"
CU Microsoft\Windows\Shell\Associations\UrlAssociations\https\UserChoice|ProgId=BraveHTML.QRSTUVWXYZ
)",
     LR"(
C:\Program Files (x86)\Microsoft\Edge\Application\msedge.exe|118.0.2088.76
C:\Users\Anna\AppData\Local\BraveSoftware\Brave-Browser\Application\brave.exe|118.1.59.120
C:\Users\Anna\AppData\Local\Vivaldi Snapshot\Application\vivaldi.exe|6.4.3160.3
C:\Program Files\WindowsApps\AppleInc.iTunes_12130.1.54003.0_x64__nzyj5cx40ttqa\iTunes.exe)",
     L"\\\\server\\share\\kiosk.exe",
     LR"(
73000=Yes|73001=2|73002=Brave|73003=kiosk.exe|73012=Yes|73013=118.0.2088.76|73020=Yes|73021=118.1.59.120
73232=Yes|73233=12130.1.54003.0)",
     LR"(AppleInc.iTunes_nzyj5cx40ttqa|AppleInc.iTunes_12130.1.54003.0_x64__nzyj5cx40ttqa|C:\Program Files\WindowsApps\AppleInc.iTunes_12130.1.54003.0_x64__nzyj5cx40ttqa)"},
    {L"bare server",
     LR"(
64 Microsoft\NET Framework Setup\NDP\v4\Full|Release=#528449|Version=4.8.04161
64 Microsoft\PowerShell\3\PowerShellEngine|PowerShellVersion=5.1.20348.1
64 Microsoft\VisualStudio\14.0\VC\Runtimes\x64|Installed=#0|Version=v14.29.30133.00
)",
     LR"(
C:\Windows\Microsoft.NET\Framework64\v4.0.30319\clr.dll|4.8.4420.0
C:\Windows\System32\WindowsPowerShell\v1.0\powershell.exe|10.0.20348.1
C:\Windows\System32\vcruntime140.dll|14.29.30133.0
C:\Windows\System32\cscript.exe|5.812.10240.16384)",
     L"C:\\Windows\\System32\\cscript.exe",
     LR"(
72920=4.8|72950=5.1.20348.1|73003=cscript.exe|73004=5.812.10240.16384)"},
};

}  // namespace kel::test
