"""Makes the packages from a built DLL and its programs: two installers, an archive, and on demand a cabinet of the DLL. Signs
the DLL and the programs in them, and the packages, when a certificate is given (scripts/sign.sh)."""

import argparse
import hashlib
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import assembly
import bill
import documents
import extension
import fleet
import installer
import registration
from product import read_product
from stamp import EPOCH, faked, write_zip

ROOT = registration.ROOT
SITE = "https://keldane.example/detection"
CABINET_INF = """[version]
signature="$CHICAGO$"
AdvancedINF=2.0

[Add.Code]
Detection.dll=Detection.dll

[Detection.dll]
file-win32-x64=thiscab
clsid={class_id}
FileVersion={version},0
RegisterServer=yes
"""


def built_version():
    """The version that the DLL is built with, three numbers."""
    return re.search(r"project\(Detection VERSION (\d+\.\d+\.\d+) ", (ROOT / "CMakeLists.txt").read_text("ascii"))[1]


def digest(content):
    return hashlib.sha256(content).hexdigest()


def sign(*paths):
    subprocess.run([ROOT / "scripts" / "sign.sh", *paths], check=True)


def headers(folder):
    """What a program in C or C++ is compiled with, without the path of the folder that it was generated in."""
    texts = {name: (folder / name).read_bytes() for name in ("Detection.h", "Detection_i.c")}
    return {f"include/{name}": text[text.index(b"\n") + 1:].lstrip() for name, text in texts.items()}


def policies():
    """The templates of the policies."""
    folder = ROOT / "packaging" / "policies"
    return {f"policies/{name}": (folder / name).read_bytes() for name in ("Keldane.admx", "en-US/Keldane.adml")}


def archive(product, dll, programs, interface, target):
    """The archive: the DLL, the programs, the headers, the manifest, the documents and examples, what fleet tools need, the
    templates of the policies, the notices of linked libraries, and the SBOM."""
    content = dll.read_bytes()
    files = {"Detection.dll": content, **{program.name: program.read_bytes() for program in programs},
             "Detection.manifest": assembly.manifest(product.version).encode(),
             "Detection.cdx.json": bill.bill(product.version, digest(content)).encode(),
             "licences.txt": bill.notices().encode(), **headers(interface), **documents.documents(),
             **fleet.scripts(product), **policies()}
    files["SHA256SUMS"] = "".join(f"{digest(files[name])}  {name}\n" for name in sorted(files)).encode()
    write_zip(target, files)


def cabinet(version, dll, work, target):
    """The cabinet for a page's codebase, which only the old engine reads."""
    inf = work / "Detection.inf"
    inf.write_text(CABINET_INF.format(class_id=registration.class_id(), version=version.replace(".", ",")))
    os.utime(inf, (EPOCH, EPOCH))
    subprocess.run([*faked(), "gcab", "-c", "-n", "-z", str(target), "Detection.inf", "Detection.dll"], cwd=work, check=True)


def main():
    parser = argparse.ArgumentParser(prog="packaging", description=__doc__)
    parser.add_argument("--dll", type=Path, default=ROOT / "build" / "release" / "Detection.dll")
    parser.add_argument("--program", type=Path, default=ROOT / "build" / "release" / "kel.exe")
    parser.add_argument("--check-program", type=Path, default=ROOT / "build" / "release" / "check.exe")
    parser.add_argument("--headers", type=Path, default=ROOT / "build" / "release" / "control")
    parser.add_argument("--output", type=lambda text: Path(text).resolve(), default=ROOT / "build" / "package")
    parser.add_argument("--version", default=built_version(), help="three numbers; the DLL's otherwise")
    parser.add_argument("--site", default=SITE, help="address of the publisher's pages, which the installers link to")
    parser.add_argument("--cab", action="store_true", help="make the cabinet, too")
    arguments = parser.parse_args()
    version, output = arguments.version, arguments.output
    if not re.fullmatch(r"\d+\.\d+\.\d+", version):
        sys.exit(f"{version!r} is not a version of three numbers.")
    work = output / "work"
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    dll, icon, programs = work / "Detection.dll", work / "Detection.ico", [work / "kel.exe", work / "check.exe"]
    shutil.copyfile(arguments.dll, dll)
    for source, program in zip((arguments.program, arguments.check_program), programs, strict=True):
        shutil.copyfile(source, program)
    sign(dll, *programs)
    shutil.copyfile(ROOT / "packaging" / "Detection.ico", icon)
    for path in (dll, *programs, icon):
        os.utime(path, (EPOCH, EPOCH))
    product = read_product(dll, version, arguments.site)
    for program in programs:
        if read_product(program, version, arguments.site) != product:
            sys.exit(f"{program.name} and {arguments.dll} are for different services or from different publishers.")
    made = []
    for scope in ("machine", "user"):
        made.append(output / product.package_name(scope))
        installer.build(product, scope, work, made[-1])
    if arguments.cab:
        made.append(output / f"Detection-{version}-x64.cab")
        cabinet(version, dll, work, made[-1])
    sign(*made)
    made.append(output / f"Detection-{version}-x64.zip")
    archive(product, dll, programs, arguments.headers, made[-1])
    made += fleet.winget(product, output)
    made.append(extension.build(version, output))
    # Last of all, from the signed files.
    (output / "SHA256SUMS").write_text("".join(f"{digest(path.read_bytes())}  {path.relative_to(output)}\n" for path in made))
    shutil.rmtree(work)  # all that is left in the folder is published
    for path in made:
        print(f"{path.stat().st_size:9,d} bytes  {path}")


main()
