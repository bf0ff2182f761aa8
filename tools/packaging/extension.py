"""The browser extension's package, and the registration of the program as its native host."""

import json
import re
import uuid

import sources
from product import resource_text
from registration import ROOT
from stamp import write_zip

FOLDER = ROOT / "extension"
# The name by which the extension asks for the program; extension/host.js has it, too.
HOST = re.search(r'HOST = "([a-z.]+)"', (FOLDER / "host.js").read_text("ascii"))[1]
HOST_KEY = r"NativeMessagingHosts" + "\\" + HOST
# Below "Software": where each browser looks for hosts, and which of the manifests it reads.
BROWSERS = {r"Google\Chrome": "chromium", "Chromium": "chromium", r"Microsoft\Edge": "chromium", "Mozilla": "mozilla"}


def manifests(program):
    """The manifests of the native host by file name, for the extensions that the program answers. A Chromium's id has letters
    alone."""
    ids = resource_text(program.read_bytes(), "ExtensionIds").split(";")
    common = {"name": HOST, "description": "Machine inventory", "path": "kel.exe", "type": "stdio"}
    chromium = [f"chrome-extension://{number}/" for number in ids if re.fullmatch("[a-p]{32}", number)]
    mozilla = [number for number in ids if not re.fullmatch("[a-p]{32}", number)]
    return {"host-chromium.json": json.dumps(common | {"allowed_origins": chromium}, indent=2) + "\n",
            "host-mozilla.json": json.dumps(common | {"allowed_extensions": mozilla}, indent=2) + "\n"}


def component(product, scope):
    """The installer's component with the manifests and the keys that name them to browsers."""
    code = str(uuid.uuid5(uuid.UUID(product.component_code(scope)), "extension host")).upper()
    root = "HKLM" if scope == "machine" else "HKCU"
    files = "".join(f'        <File Id="Host_{kind}" Name="host-{kind}.json" Source="host-{kind}.json"/>\n'
                    for kind in ("chromium", "mozilla"))
    rows = "".join(f'        <RegistryValue Root="{root}" Key="Software\\{browser}\\{HOST_KEY}" Type="string"'
                   f' Value="[#Host_{kind}]"{" KeyPath=" + chr(34) + "yes" + chr(34) if browser == "Mozilla" else ""}/>\n'
                   for browser, kind in BROWSERS.items())
    return f'      <Component Id="ExtensionHost" Guid="{code}" Win64="yes">\n{files}{rows}      </Component>\n'


# The manifests have no version.
QUERIES = tuple(f"UPDATE `File` SET `Version`='', `Language`='' WHERE `File`='Host_{kind}'" for kind in ("chromium", "mozilla"))


def build(version, output):
    """Makes the extension's package, which all browsers and their stores take, and returns its path."""
    files = {name.removeprefix("extension/"): (ROOT / name).read_bytes() for name in sources.files("extension")}
    manifest = json.loads(files["manifest.json"]) | {"version": version}
    files["manifest.json"] = (json.dumps(manifest, indent=2) + "\n").encode()
    target = output / f"Detection-{version}-extension.zip"
    write_zip(target, files)
    return target
