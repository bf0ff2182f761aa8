"""The two installer packages, for all users and for the current one, from one source."""

import hashlib
import os
import subprocess
import uuid
from xml.sax.saxutils import quoteattr

import registration
from stamp import EPOCH, faked

NAMESPACE = uuid.UUID("6b0d7d0e-6c1b-4f0a-9f57-0a4a1f3c1d52")
# Never change these: by them an upgrade finds the package that it replaces.
UPGRADE_CODES = {"machine": "7E3F2C51-9A64-4F0B-8D17-51C6E2A9B3D4", "user": "C2A8D6F4-1B75-4E39-A0C8-9D3E7F615B28"}
COMPONENTS = {"machine": "0F5B8E63-D2A7-4C1E-9B46-83E0C7A1F5D2", "user": "94D1C7B0-3E5A-4862-BF19-6A2C8E07D5F3",
              "machine32": "B86A2E19-5C40-4D7B-A3F2-17E9D4C0685A"}
FOLDERS = {"machine": ("ProgramFiles64Folder", []), "user": ("LocalAppDataFolder", ["Programs"])}
MAKER = "Keldane"
MIGRATE_FEATURES, VERSION_MAX_INCLUSIVE = 1, 512  # bits of an upgrade row's attributes


def _code(kind, content):
    return str(uuid.uuid5(NAMESPACE, f"{kind} {content}")).upper()


def _registry(rows, root):
    lines = []
    for row in rows:
        key = quoteattr("Software\\Classes\\" + row.key)
        # An empty key is written with the name "*", which also removes it on uninstallation.
        name = ' Name="*"' if row.text is None else f" Name={quoteattr(row.name)}" if row.name else ""
        value = quoteattr(row.text or "")
        lines.append(f"        <RegistryValue Root=\"{root}\" Key={key}{name} Type=\"string\" Value={value}/>")
    return "\n".join(lines)


def source(scope, version, product_code):
    """The installer's source in the language of the tool that builds it."""
    wide, narrow = registration.rows("[#DetectionDll]", "[INSTALLFOLDER]")
    root = "HKLM" if scope == "machine" else "HKCU"
    folder, between = FOLDERS[scope]
    opened = "".join(f'<Directory Id="{name}Folder" Name="{name}">' for name in between)
    closed = "</Directory>" * len(between)
    user = scope == "user"
    marker = ('        <RegistryValue Root="HKCU" Key="Software\\Detection" Name="Installed" Type="string"'
              ' Value="1" KeyPath="yes"/>\n        <RemoveFolder Id="RemoveInstall" On="uninstall"/>\n') if user else ""
    component32 = "" if user else (
        f'      <Component Id="Interface32" Guid="{COMPONENTS["machine32"]}" Win64="no">\n'
        f'{_registry(narrow, root)}\n      </Component>\n')
    reference32 = "" if user else '<ComponentRef Id="Interface32"/>'
    return f"""<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
  <Product Id="{product_code}" Name="Detection" Language="1033" Version="{version}"
           Manufacturer="{MAKER}" UpgradeCode="{UPGRADE_CODES[scope]}">
    <Package InstallerVersion="500" Compressed="yes" InstallScope="per{scope.capitalize()}"
             Description="Machine inventory control"/>
    <MajorUpgrade DowngradeErrorMessage="A newer version of Detection is installed."/>
    <Media Id="1" Cabinet="detection.cab" EmbedCab="yes"/>
    <Icon Id="Detection.ico" SourceFile="Detection.ico"/>
    <Property Id="ARPPRODUCTICON" Value="Detection.ico"/>
    <Property Id="ARPNOMODIFY" Value="1"/>
    <Directory Id="TARGETDIR" Name="SourceDir">
      <Directory Id="{folder}">{opened}<Directory Id="INSTALLFOLDER" Name="Detection">
      <Component Id="Control" Guid="{COMPONENTS[scope]}" Win64="yes">
        <File Id="DetectionDll" Name="Detection.dll" Source="Detection.dll"{'' if user else ' KeyPath="yes"'}/>
        <File Id="KelExe" Name="kel.exe" Source="kel.exe"/>
{marker}{_registry(wide, root)}
      </Component>
{component32}      </Directory>{closed}</Directory>
    </Directory>
    <Feature Id="Main" Level="1"><ComponentRef Id="Control"/>{reference32}</Feature>
  </Product>
</Wix>
"""


def build(scope, version, work, target):
    """Makes one package of the DLL, the program and the icon in a folder; the same inputs give the same bytes.

    Packages with different contents, such as DLLs for different hosts, are different products even if their version is
    the same: the later one replaces the earlier one. With one code for both, the system would keep the earlier DLL.
    """
    dll, program, icon = work / "Detection.dll", work / "kel.exe", work / "Detection.ico"
    wxs = work / f"{scope}.wxs"
    queries = (
        # The tool writes no file version; a row without one beside a versioned file could keep the old file.
        f"UPDATE `File` SET `Version`='{version}.0', `Language`='1033'",
        *(f"DELETE FROM `MsiFileHash` WHERE `File_`='{file}'" for file in ("DetectionDll", "KelExe")),
        # The tool's own upgrade row replaces only lower versions.
        "DELETE FROM `Upgrade` WHERE `ActionProperty`='WIX_UPGRADE_DETECTED'",
        "INSERT INTO `Upgrade` (`UpgradeCode`, `VersionMax`, `Attributes`, `ActionProperty`) VALUES "
        f"('{{{UPGRADE_CODES[scope]}}}', '{version}', {MIGRATE_FEATURES | VERSION_MAX_INCLUSIVE}, 'WIX_UPGRADE_DETECTED')")
    files = (dll, program, icon)
    inputs = (source(scope, version, "").encode(), *map(str.encode, queries), *(path.read_bytes() for path in files))
    content = hashlib.sha256(b"".join(inputs)).hexdigest()
    wxs.write_text(source(scope, version, _code("product", content)))
    for path in (wxs, *files):
        os.utime(path, (EPOCH, EPOCH))
    target.unlink(missing_ok=True)
    subprocess.run([*faked(), "wixl", "-a", "x64", "-o", str(target), wxs.name], cwd=work, check=True)
    for query in queries:
        subprocess.run([*faked(), "msibuild", str(target), "-q", query], check=True)
    package_code = "{" + _code("package", content) + "}"
    subprocess.run([*faked(), "msibuild", str(target), "-s", "Detection", MAKER, "x64;1033", package_code], check=True)
