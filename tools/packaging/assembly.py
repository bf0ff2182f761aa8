"""The manifest with which a program uses its own copy of the control, without registration."""

import re

import registration


def manifest(version):
    wide, _ = registration.rows("Detection.dll", "")
    texts = {(row.key, row.name): row.text for row in wide}
    class_key = "CLSID\\" + registration.class_id()
    program, independent, library, model = (texts[(f"{class_key}\\{key}", name)] for key, name in (
        ("ProgID", None), ("VersionIndependentProgID", None), ("TypeLib", None), ("InprocServer32", "ThreadingModel")))
    source = (registration.ROOT / "control" / "Detection.idl").read_text("ascii")
    interface = re.search(r"uuid\(([-0-9A-F]+)\)[^\]]*\]\s*interface", source)[1]
    return f"""<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="Detection" version="{version}.0" processorArchitecture="amd64"/>
  <file name="Detection.dll">
    <comClass clsid="{registration.class_id()}" threadingModel="{model}" tlbid="{library}" progid="{independent}">
      <progid>{program}</progid>
    </comClass>
    <typelib tlbid="{library}" version="1.0" helpdir=""/>
  </file>
  <comInterfaceExternalProxyStub name="ISysInfo" iid="{{{interface}}}" tlbid="{library}"
                                 proxyStubClsid32="{registration.AUTOMATION_MARSHALLER}"/>
</assembly>
"""
