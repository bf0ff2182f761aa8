// Entries in lists of installed programs, as installers write them: key, display name, version, publisher.
// The first are of products of the table, with the folder that the test puts their program into; the others
// of none. They are from the ARP data in the tests of the package manager of Windows, and from its manifests.
#pragma once

namespace kel::test {

constexpr const wchar_t* EntriesOfTable =
    LR"(
ZoomUMX|Zoom|5.9.7 (3931)|Zoom Video Communications, Inc.|Zoom\bin\Zoom.exe
{771FD6B0-FA20-440A-A002-3B3BAC16DC50}_is1|Microsoft Visual Studio Code (User)|1.65.2|Microsoft Corporation|VSC\Code.exe
{9675011C-2395-4AD7-B1CC-92910F991F58}|VLC media player|3.0.20|VideoLAN|VLC\vlc.exe
{0E49FCED-3C8B-4382-A39B-398B6122D44D}|LibreOffice 24.8.0.3|24.8.0.3|The Document Foundation|LO\program\soffice.exe
{AC76BA86-1033-FF00-7760-BC15014EA700}|Adobe Acrobat DC (64-bit)|24.002.20857|Adobe|Acrobat DC\Acrobat\Acrobat.exe
{8F07ABBC-5F12-493C-A58B-FF976A4B77E1}|Eclipse Temurin JDK with Hotspot 21.0.3+9 (x64)|21.0.3.9|Eclipse Adoptium|JDK\bin\javac.exe
{23170F69-40C1-2702-2408-000001000000}|7-Zip 24.08 (x64 edition)|24.08.00.0|Igor Pavlov|7-Zip\7zFM.exe)";

constexpr const wchar_t* EntriesOfOthers =
    LR"(
{B61241AA-F5FC-42C9-A1F9-F6D72D654349}|HttpMaster Professional Edition 5.4.1|5.4.1|Borvid
Studio Fisioterapico Pro Demo_is1|Studio Fisioterapico Pro Demo||Copyright Esposito Software
{D2AD7A8B-01BF-48FF-8023-922A4F7A0788}|PowerToys (Preview)|0.56.2|Microsoft Corporation
{D62480B8-71F1-48CE-BEEC-9D3E172C87B5}_is1|ElevenClock version 3.3.1|3.3.1|SomePythonThings
{D2F124FC-5373-4A4A-8C5A-61052A3D34CA}|OpenOffice 4.1.11|4.111.9808|Apache Software Foundation
{75454996-E72B-480E-BB8C-CD743A54C362}_is1|PolyPop 0.98.222.0|0.98.222.0|Simmetri, Inc.
MyLife Organized|MyLifeOrganized v. 5.1.3|5.1.3|MyLifeOrganized.net
BPM Counter_is1|BPM Counter 3.8.0.0|3.8.0.0|AbyssMedia.com
Archivio Esami Clinici 3.0 Demo_is1|Archivio Esami Clinici 3.0 Demo||Copyright Esposito Software
{6F320B93-EE3C-4826-85E0-ADF79F8D4C61}|Microsoft Visual Studio Installer|2.11.63.5026|Microsoft Corporation
{91B33C97-5FC6-8971-3444-C57BBE022215}_is1|Ashampoo Photo Optimizer 8|8.2.3|Ashampoo GmbH & Co. KG
99388cc2-2782-5495-bbd2-525df2487901|Cleaner One Pro 6.6.0|6.6.0|Trend Micro, Inc.
DiskZIP|DiskZIP|2022.3.1415.932|DiskZIP Computing, Inc.
{EF3BC641-89A9-4703-9DED-19CEE72CEF07}_is1|WorldClock Screen Saver (Trial)|7.0.8.0|Fulvio Castelli
{470BC918-3740-4A97-9797-8570A7961130}_is1|Auto Dark Mode|10.1.0.10|Armin Osaj & Samuel Schiegg
{037BAB81-3DF7-4381-A72C-A26B57C03548}_is1|Wondershare EdrawMax(Build 11.1.2.870)|11.1.2.870|EdrawSoft Co.,Ltd.
Wondershare DemoCreator_is1|Wondershare DemoCreator(Build 5.5.1)||Wondershare Software
{0A071CA1-6629-4C05-A0B5-C2C09047B4B9}|InstallAware Virtualization|9|InstallAware Software
{6683BBFB-B899-4755-B260-DF0387D9F872}|CuteCursors|1.0.0|Apollo One
{217B4C08-948D-4276-BFBB-BEE930AE5A2C}_is1|Microsoft Visual Studio Code Insiders (User)|1.66.0|Microsoft Corporation
{E8F86DA8-B8E4-42C7-AFD4-EBB692AC43FD}_is1|Wondershare Dr.Fone (Version 10.9.6)|10.9.6.398|Wondershare Technology Co.,Ltd.
GOM Player|GOM Player|2.3.67.5331|GOM & Company
{02ADFF54-7D56-42F1-B517-FDA35F55D2CC}|JYL Visitor 1.94|1.94|JYL Software
{5145E2CF-E9FC-48E6-A2B4-E409FC84D059}|Parallels Toolbox|5.1.0.3170|Parallels International GmbH
InstallAware Msix Editor 1.0|InstallAware Msix Editor 1.0|1.0.0.2703|InstallAware Software
{FAC47927-1A6A-4C6E-AD7D-E9756794A4BC}|Epic Games Launcher|1.3.23.0|Epic Games, Inc.
{37215B1A-1990-4F55-936E-C9BA1634EF75}}_is1|Easy Backup|VersionApplication|Emjysoft
{8EB85C0E-DE7D-4A53-BD66-708B8F2C80B0}|HHD Software Free Hex Editor Neo 6.54|6.54.02.6790|HHD Software, Ltd.
GOMMixPro|GOM Mix Pro|2.0.4.8|GOM & Company
{587D3069-EFE1-4FC2-B917-01496D5ABF8A}|FolderSizes 9|9.3.362|Key Metric Software
{3F273072-3D14-479E-B4CD-AC8B1F436DA1}|Audials 2022|22.0.177.0|Audials AG
{57147D4D-2492-41EC-A552-FB37C1C7FF3E}_is1|VisualNEO Win|21.9.9|SinLios
{A114E34B-AA5C-4DD8-98A9-3130ACA19491}|HouseCall|1.62|Trend Micro Inc.
{2F7387D3-EB5F-4CA5-8C42-04C59F922740}|x-studio|2022.1.4|Simdsoft Limited
ZIPmagic|ZIPmagic|19.19.21|Simon King
{AC08D179-14D5-4B93-9684-20DBE0848637}|AVer PTZ Link|1.1.1013.0|AVer Information Inc
{b666623c-3a76-463d-805e-7a32e7e98f0a}|Laplink Reconfigurator|1.0.0.1|Laplink Software, Inc.
MX.{DC06D09C-D841-44F3-81CA-150011EC5C46}|Music Maker (64-Bit)|30.0.2.30|MAGIX Software GmbH
Opera GX 82.0.4227.44|Opera GX Stable 82.0.4227.44|82.0.4227.44|Opera Software
{97CFEA35-98EF-4EBC-8AF1-4F161CFCAE86}|VirtualDJ 2021|8.5.6747.0|Atomix Productions
{C9D97E1E-B188-4500-A87D-902530E0D1E0}|TeamSpeak|5.0.0|TeamSpeak
{ABBD4BA8-6703-40D2-AB1E-5BB1F7DB49A4}|Trend Micro Antivirus+|17.7|Trend Micro Inc.
Chameleon_is1|Chameleon version 1.14.3.61|1.14.3.61|Pressure Profile Systems
{278A8296-12A6-4CD0-8A8E-6947948477C5}|CyberLink PowerDirector 365|20.1.2519.0|CyberLink Corp.
{CD95F661-A5C4-44F5-A6AA-ECDD91C2413B}|WinZip 26.0|26.0.14610|Corel Corporation
Hard Disk Sentinel_is1|Hard Disk Sentinel PRO|6.01|Janos Mathe
Avast Antivirus|Avast Free Antivirus|22.2.6003|Avast Software
Logspire_is1|Logspire 1.0.0.51|1.0.0.51|Anfibia
ChristmasElf|Christmas Elf||Pothos
CCleaner|CCleaner|5.89|Piriform
TotalDefense Anti-Virus|Total Defense Essential Anti-Virus|13.0.0.572|Total Defense, Inc.
{F40165C8-BD5B-4E42-A40D-396BB707E5B7}_is1|Active@  Disk Editor 7|7|LSoft Technologies Inc
coolnewpdf|CoolNew PDF|3.0.0.1|CoolNew Software Corporation
Microsoft Edge Update|Microsoft Edge Update|1.3.155.77|Microsoft Edge
{343A530C-4726-4091-87E0-F9CC41792CE2}_is1|Wondershare PDFelement ( Version 8.3.0 )|8.3.0|Wondershare
X-VPN|X-VPN|71|Free Connected Limited)";

}  // namespace kel::test
