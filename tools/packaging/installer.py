"""The two installer packages, for all users and for the current one, from one source."""

import hashlib
import os
import subprocess
import uuid
from xml.sax.saxutils import escape, quoteattr

import extension
import registration
from stamp import EPOCH, faked

LINK = "kel-check"  # the scheme of a page's links, which open check.exe
POLICIES = r"Software\Policies\Keldane"
# The options of each package: properties of these names, in capitals, which upgrades and repairs keep.
USER_OPTIONS = ("Link", "Extension")
MACHINE_OPTIONS = ("Identifier", "ServiceHost", "LogFile", "LogLevel", "LogSize", "LocalServer")
OPTIONS = {"machine": MACHINE_OPTIONS + USER_OPTIONS, "user": USER_OPTIONS}
# The options that are policies, with the type of the value. Policies are the machine's: the product reads none of a user.
POLICY_VALUES = {"ServiceHost": "string", "LogFile": "string", "LogLevel": "integer", "LogSize": "integer"}
LOGGED = "LOGFILE AND NOT LOGFILE = 0"
# Which components are installed. A removal has no property, and Wine asks again then.
CONDITIONS = {"Identifier": "IDENTIFIER = 1", "ServiceHost": "SERVICEHOST", "LogFile": LOGGED,
              "LogLevel": LOGGED + " AND LOGLEVEL", "LogSize": LOGGED + " AND LOGSIZE", "LocalServer": "LOCALSERVER = 1",
              "LocalServer32": "LOCALSERVER = 1", "Link": "NOT LINK = 0", "ExtensionHost": "NOT EXTENSION = 0"}
# What an installation needs, and what the installer says otherwise, of each package: an option that is wrong would otherwise
# be ignored without a word. What an earlier installation accepted does not stop an upgrade.
NEEDS = {
    "machine": {
        'SERVICEHOST = KEPTSERVICEHOST OR NOT (SERVICEHOST >< "/" OR SERVICEHOST >< ":")':
            "SERVICEHOST is the name of a host, without a scheme, a port or a path.",
        "NOT LOGLEVEL OR (LOGLEVEL >= 1 AND LOGLEVEL <= 7)": "LOGLEVEL is a number from 1 to 7.",
        "NOT LOGSIZE OR (LOGSIZE >= 1024 AND LOGSIZE <= 102400)": "LOGSIZE is a number of KB from 1024 to 102400."},
    "user": {
        f"NOT ({' OR '.join(map(str.upper, MACHINE_OPTIONS))})":
            "This package is for one user. An option that was given is only for the package for all users."}}
ROOTS = {"machine": "HKLM", "user": "HKCU"}
FOLDERS = {"machine": ("ProgramFiles64Folder", []), "user": ("LocalAppDataFolder", ["Programs"])}
MIGRATE_FEATURES, VERSION_MAX_INCLUSIVE = 1, 512  # bits of an upgrade row's attributes
RAW_VALUE, FOR_64_BIT = 2, 16  # a search's type
SET_PROPERTY, AFTER_SEARCH, AFTER_COSTING = 51, 51, 1001  # a custom action's type, and its places
COMMENTS = "Machine inventory control. Service: "  # of the entry of "Apps", before the host


def _registry(rows, root):
    lines = []
    for row in rows:
        key = quoteattr("Software\\Classes\\" + row.key)
        # An empty key is written with the name "*", which also removes it on uninstallation.
        name = ' Name="*"' if row.text is None else f" Name={quoteattr(row.name)}" if row.name else ""
        value = quoteattr(row.text or "")
        lines.append(f"        <RegistryValue Root=\"{root}\" Key={key}{name} Type=\"string\" Value={value}/>")
    return "\n".join(lines)


def _properties(product, size):
    """What the entry of "Apps" shows, and how the installer behaves without further options."""
    properties = {
        "ARPPRODUCTICON": "Detection.ico", "ARPNOMODIFY": "1",
        "ARPCOMMENTS": COMMENTS + product.host,
        "ARPCONTACT": f"{product.publisher}, {product.site}",
        "ARPSIZE": str(size), "ARPHELPLINK": f"{product.site}/help", "ARPURLINFOABOUT": product.site,
        # Hosts that have the DLL loaded go on, and the machine is not restarted: the DLL is replaced at its next start.
        "REBOOT": "ReallySuppress", "MSIRESTARTMANAGERCONTROL": "DisableShutdown",
        # Whatever version a file in the folder has, as a DLL for another host may have the same one.
        "REINSTALLMODE": "amus"}
    return "\n".join(f'    <Property Id="{name}" Value={quoteattr(value)}/>' for name, value in properties.items())


def _identifier(product):
    """The component behind the property IDENTIFIER=1: at a user's next log-on, the system's Active Setup creates the key in
    which the control keeps the machine's identifier, once for each user."""
    code = product.component_code("identifier")
    key = f"Software\\Microsoft\\Active Setup\\Installed Components\\{{{code}}}"
    values = (("StubPath", r"reg add HKCU\Software\Keldane /f"), ("Version", "1,0"))
    rows = "\n".join(f'        <RegistryValue Root="HKLM" Key="{key}" Name="{name}" Type="string" Value="{value}"/>'
                     for name, value in values)
    return _component("Identifier", code, rows)


def _own_key(product, scope):
    """The place of the installer's own values."""
    key = quoteattr("Software\\" + product.name)
    return f'Root="{ROOTS[scope]}" Key={key}'


def _kept(product, scope):
    """The searches for values of the installer's own, by which an upgrade or a repair finds what an earlier installation was
    asked for; with them the rows that write the values, empty ones for options that were not given."""
    place = _own_key(product, scope)
    searches = (f'    <Property Id="KEPT{name.upper()}"><RegistrySearch Id="Kept{name}" {place} Name="{name}" Type="raw"/>'
                '</Property>\n' for name in OPTIONS[scope])
    rows = (f'        <RegistryValue {place} Name="{name}" Type="string" Value="[{name.upper()}]"/>\n'
            for name in OPTIONS[scope])
    return "".join(searches), "".join(rows)


def _component(name, code, rows, is_wide="yes"):
    return f'      <Component Id="{name}" Guid="{code}" Win64="{is_wide}">\n{rows}\n      </Component>\n'


def _policies(product):
    """The components behind the properties that are policies. The installer's own values distinguish for an upgrade what the
    installer set from what a group policy did."""
    return "".join(_component(name, product.component_code(name.lower()),
                              f'        <RegistryValue Root="HKLM" Key="{POLICIES}" Name="{name}" Type="{kind}" '
                              f'Value="[{name.upper()}]"/>') for name, kind in POLICY_VALUES.items())


def _needs(scope):
    """What an installation, but no removal, needs."""
    return "".join(f"    <Condition Message={quoteattr(message)}>{escape(f'Installed OR {condition}')}</Condition>\n"
                   for condition, message in NEEDS[scope].items())


def _local_server(product):
    """The components behind the property LOCALSERVER=1: kel.exe serves the control to programs that cannot load the DLL."""
    wide, narrow = (_registry(rows, "HKLM") for rows in registration.server_rows("[#KelExe]"))
    return (_component("LocalServer", product.component_code("server"), wide)
            + _component("LocalServer32", product.component_code("server32"), narrow, "no"))


def _link(product, scope):
    """The registration of links to check.exe. It takes the whole link as one argument, and refuses anything else."""
    rows = [registration.Row(LINK, None, "URL:Computer check"), registration.Row(LINK, "URL Protocol", ""),
            registration.Row(LINK + r"\DefaultIcon", None, "[#CheckExe],0"),
            registration.Row(LINK + r"\shell\open\command", None, '"[#CheckExe]" "%1"')]
    code = str(uuid.uuid5(uuid.UUID(product.component_code(scope)), "link")).upper()
    return _component("Link", code, _registry(rows, ROOTS[scope]))


def source(product, scope, size):
    """The installer's source in the language of the tool that builds it.

    @param size of the installed files, in KB
    """
    wide, narrow = registration.rows("[#DetectionDll]", "[INSTALLFOLDER]")
    root = ROOTS[scope]
    folder, between = FOLDERS[scope]
    opened = "".join(f'<Directory Id="{name}Folder" Name="{name}">' for name in between)
    closed = "</Directory>" * len(between)
    user = scope == "user"
    marker = (f'        <RegistryValue {_own_key(product, scope)} Name="Installed" Type="string"'
              ' Value="1" KeyPath="yes"/>\n        <RemoveFolder Id="RemoveInstall" On="uninstall"/>\n') if user else ""
    searches, kept = _kept(product, scope)
    components = "" if user else (
        _component("Interface32", product.component_code("machine32"), _registry(narrow, root), "no") + _identifier(product)
        + _policies(product) + _local_server(product))
    names = ["Control", *([] if user else ["Interface32", "Identifier", *POLICY_VALUES, "LocalServer", "LocalServer32"]),
             "Link", "ExtensionHost"]
    references = "".join(f'<ComponentRef Id="{name}"/>' for name in names)
    return f"""<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
  <Product Id="{product.product_code(scope)}" Name={quoteattr(product.display_name(scope))} Language="1033"
           Version="{product.version}" Manufacturer={quoteattr(product.publisher)} UpgradeCode="{product.upgrade_code(scope)}">
    <Package InstallerVersion="500" Compressed="yes" InstallScope="per{scope.capitalize()}"
             Description="Machine inventory control"/>
    <MajorUpgrade DowngradeErrorMessage="A newer version of Detection is installed."/>
{_needs(scope)}    <Media Id="1" Cabinet="detection.cab" EmbedCab="yes"/>
    <Icon Id="Detection.ico" SourceFile="Detection.ico"/>
{_properties(product, size)}
{searches}    <Directory Id="TARGETDIR" Name="SourceDir">
      <Directory Id="{folder}">{opened}<Directory Id="INSTALLFOLDER" Name={quoteattr(product.name)}>
      <Component Id="Control" Guid="{product.component_code(scope)}" Win64="yes">
        <File Id="DetectionDll" Name="Detection.dll" Source="Detection.dll"{'' if user else ' KeyPath="yes"'}/>
        <File Id="KelExe" Name="kel.exe" Source="kel.exe"/>
        <File Id="CheckExe" Name="check.exe" Source="check.exe"/>
{marker}{kept}{_registry(wide, root)}
      </Component>
{components}{_link(product, scope)}{extension.component(product, scope)}      </Directory>{closed}</Directory>
    </Directory>
    <Feature Id="Main" Level="1">{references}</Feature>
  </Product>
</Wix>
"""


def _keep(name):
    """What sets a property that the command does not give to what the search has found."""
    kept = f"KEPT{name.upper()}"
    return ("INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`) VALUES "
            f"('Keep{name}', {SET_PROPERTY}, '{name.upper()}', '[{kept}]')",
            "INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES "
            f"('Keep{name}', '{kept} AND NOT {name.upper()}', {AFTER_SEARCH})")


def _set_after_costing(name, text, condition=""):
    """What sets a property, after it is known what is installed and where."""
    return ("INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`) VALUES "
            f"('Set{name}', {SET_PROPERTY}, '{name}', '{text}')",
            "INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) VALUES "
            f"('Set{name}', '{condition}', {AFTER_COSTING})")


def _secure(scope):
    """The properties that reach the part of an installation that runs with rights."""
    options = (name.upper() for name in OPTIONS[scope])
    return ["WIX_DOWNGRADE_DETECTED", "WIX_UPGRADE_DETECTED", *(kind + name for name in options for kind in ("", "KEPT"))]


def build(product, scope, work, target):
    """Makes one package of the DLL, the programs and the icon in a folder; the same inputs give the same bytes."""
    installed = [work / name for name in ("Detection.dll", "kel.exe", "check.exe")]
    files = [*installed, work / "Detection.ico"]
    for name, text in extension.manifests(work / "kel.exe").items():
        (work / name).write_text(text, "ascii")
        os.utime(work / name, (EPOCH, EPOCH))
    wxs = work / f"{scope}.wxs"
    queries = (
        # The tool writes no file version; a row without one beside a versioned file could keep the old file.
        f"UPDATE `File` SET `Version`='{product.version}.0', `Language`='1033'",
        *(f"DELETE FROM `MsiFileHash` WHERE `File_`='{file}'" for file in ("DetectionDll", "KelExe", "CheckExe")),
        # The tool's own upgrade row replaces only lower versions.
        "DELETE FROM `Upgrade` WHERE `ActionProperty`='WIX_UPGRADE_DETECTED'",
        "INSERT INTO `Upgrade` (`UpgradeCode`, `VersionMax`, `Attributes`, `ActionProperty`) VALUES "
        f"('{{{product.upgrade_code(scope)}}}', '{product.version}', {MIGRATE_FEATURES | VERSION_MAX_INCLUSIVE}, "
        "'WIX_UPGRADE_DETECTED')",
        # The tool does not know conditions of components. In the package for one user, some change nothing.
        *(f"UPDATE `Component` SET `Condition`='{condition} OR REMOVE = \"ALL\"' WHERE `Component`='{component}'"
          for component, condition in CONDITIONS.items()),
        # The tool does not know texts with variables.
        "UPDATE `Registry` SET `Value`='#%[LOGFILE]' WHERE `Component_`='LogFile'",
        # The tool searches for values of 32-bit programs.
        f"UPDATE `RegLocator` SET `Type`={RAW_VALUE | FOR_64_BIT}",
        *(query for name in OPTIONS[scope] for query in _keep(name)),
        # An installation with consent runs in the installer's service, which takes only these from the command.
        f"UPDATE `Property` SET `Value`='{';'.join(_secure(scope))}' WHERE `Property`='SecureCustomProperties'",
        # The entry of "Apps" shows the folder, and the host that the installer sets by policy.
        *_set_after_costing("ARPINSTALLLOCATION", "[INSTALLFOLDER]"),
        *(_set_after_costing("ARPCOMMENTS", COMMENTS + "[SERVICEHOST]", "$ServiceHost = 3 OR ?ServiceHost = 3")
          if scope == "machine" else ()),
        *extension.QUERIES)
    text = source(product, scope, sum(path.stat().st_size for path in installed) // 1024)
    inputs = (text.encode(), *map(str.encode, queries), *(path.read_bytes() for path in files))
    wxs.write_text(text)
    for path in (wxs, *files):
        os.utime(path, (EPOCH, EPOCH))
    target.unlink(missing_ok=True)
    subprocess.run([*faked(), "wixl", "-a", "x64", "-o", str(target), wxs.name], cwd=work, check=True)
    # One run for all queries, as each run writes the whole package anew.
    subprocess.run([*faked(), "msibuild", str(target), "-q", *queries], check=True)
    code = product.package_code(scope, hashlib.sha256(b"".join(inputs)).hexdigest())
    subprocess.run([*faked(), "msibuild", str(target), "-s", "Detection", product.publisher, "x64;1033", f"{{{code}}}"],
                   check=True)
