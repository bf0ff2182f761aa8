"""What fleet tools need beside the packages: codes, a detection script, an installing script, and winget's manifests."""

import hashlib
import json
import re

from registration import ROOT

MANIFEST_VERSION = "1.6.0"
MAX_SEGMENT = 32  # of a package's identifier, between dots
UNINSTALL = r"SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall"
VERSION_MANIFEST = """# yaml-language-server: $schema=https://aka.ms/winget-manifest.version.{form}.schema.json
PackageIdentifier: {id}
PackageVersion: {product.version}
DefaultLocale: en-US
ManifestType: version
ManifestVersion: {form}
"""
LOCALE_MANIFEST = """# yaml-language-server: $schema=https://aka.ms/winget-manifest.defaultlocale.{form}.schema.json
PackageIdentifier: {id}
PackageVersion: {product.version}
PackageLocale: en-US
Publisher: {publisher}
PublisherUrl: {product.site}
PublisherSupportUrl: {product.site}/help
PackageName: {product_name}
PackageUrl: {product.site}
License: Proprietary
ShortDescription: Machine inventory control for the service at {product.host}
ManifestType: defaultLocale
ManifestVersion: {form}
"""
INSTALLER_MANIFEST = """# yaml-language-server: $schema=https://aka.ms/winget-manifest.installer.{form}.schema.json
PackageIdentifier: {id}
PackageVersion: {product.version}
Platform:
- Windows.Desktop
InstallerType: msi
InstallModes:
- interactive
- silent
- silentWithProgress
InstallerSwitches:
  Silent: /qn /norestart
  SilentWithProgress: /qb /norestart
ExpectedReturnCodes:
- InstallerReturnCode: 3010
  ReturnResponse: rebootRequiredToFinish
UpgradeBehavior: install
Installers:
{installers}ManifestType: installer
ManifestVersion: {form}
"""
INSTALLER = """- Architecture: x64
  Scope: {scope}
  InstallerUrl: {product.site}/{product.version}/{name}
  InstallerSha256: {digest}
  ProductCode: '{{{product_code}}}'
  AppsAndFeaturesEntries:
  - DisplayName: {display_name}
    Publisher: {publisher}
    DisplayVersion: {product.version}
    ProductCode: '{{{product_code}}}'
    UpgradeCode: '{{{upgrade_code}}}'
    InstallerType: msi
"""


def _codes(product):
    """How each package is recognised and removed."""
    packages = []
    for scope, root in (("machine", "HKLM"), ("user", "HKCU")):
        code = f"{{{product.product_code(scope)}}}"
        packages.append({
            "package": product.package_name(scope), "scope": scope, "productCode": code,
            "upgradeCode": f"{{{product.upgrade_code(scope)}}}", "file": product.folder(scope) + r"\Detection.dll",
            "fileVersion": product.version + ".0", "entry": rf"{root}\{UNINSTALL}\{code}",
            "displayName": product.display_name(scope), "remove": f"msiexec /qn /norestart /x {code}"})
    return {"version": product.version, "service": product.host, "publisher": product.publisher, "packages": packages}


def scripts(product):
    """The archive's folder for fleet tools, by path."""
    source = ROOT / "packaging" / "fleet"
    detect = (source / "detect.ps1").read_text("ascii")
    for name, text in (("VERSION", product.version), ("HOST", product.host), ("NAME", product.name)):
        detect = detect.replace(f"@{name}@", text.replace("'", "''"))
    return {"fleet/codes.json": (json.dumps(_codes(product), indent=2) + "\n").encode(),
            "fleet/detect.ps1": detect.encode(), "fleet/install.js": (source / "install.js").read_bytes()}


def winget(product, folder):
    """Writes winget's three manifests for the finished, signed packages in a folder; returns their paths."""
    words = {"id": re.sub(r"[^A-Za-z0-9-]", "", product.publisher)[:MAX_SEGMENT] + ".Detection", "product": product,
             "publisher": json.dumps(product.publisher), "product_name": json.dumps(product.name), "form": MANIFEST_VERSION}
    installers = ""
    for scope in ("machine", "user"):
        name = product.package_name(scope)
        installers += INSTALLER.format(
            product=product, publisher=words["publisher"], scope=scope, name=name, product_code=product.product_code(scope),
            upgrade_code=product.upgrade_code(scope), display_name=json.dumps(product.display_name(scope)),
            digest=hashlib.sha256((folder / name).read_bytes()).hexdigest().upper())
    target = folder / "winget"
    target.mkdir(exist_ok=True)
    made = []
    for suffix, text in (("", VERSION_MANIFEST), (".locale.en-US", LOCALE_MANIFEST), (".installer", INSTALLER_MANIFEST)):
        made.append(target / f"{words['id']}{suffix}.yaml")
        made[-1].write_text(text.format(**words, installers=installers), "ascii")
    return made
