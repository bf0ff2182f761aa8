"""What identifies the packages: the version, the service's host and the publisher. All their codes are made from these."""

import re
import uuid
from dataclasses import dataclass

NAMESPACE = uuid.UUID("6b0d7d0e-6c1b-4f0a-9f57-0a4a1f3c1d52")
OWN_PUBLISHER = "Keldane"
# Never change these: by the first, an upgrade finds the package that it replaces.
UPGRADE_CODES = {"machine": "7E3F2C51-9A64-4F0B-8D17-51C6E2A9B3D4", "user": "C2A8D6F4-1B75-4E39-A0C8-9D3E7F615B28"}
COMPONENTS = {"machine": "0F5B8E63-D2A7-4C1E-9B46-83E0C7A1F5D2", "user": "94D1C7B0-3E5A-4862-BF19-6A2C8E07D5F3",
              "machine32": "B86A2E19-5C40-4D7B-A3F2-17E9D4C0685A", "identifier": "5E90D3A7-82F1-4C6B-9D24-F3B7061CE8A2",
              "servicehost": "A41B7C09-6D3E-4F52-8E71-2C95D0B3F846", "server": "D3B52F7E-0C94-4A18-97E6-5F1A8C2D6B70",
              "server32": "6E17A9C4-85D2-4B3F-AE50-C94F03B7D128", "logfile": "7FF19498-5C22-48C7-AC71-4FF741553DD8",
              "loglevel": "1B264372-C89B-4A8B-BF49-52DC1ED0AD12", "logsize": "1A1183F5-038E-4C93-A721-F25E66BCAD0D"}


def resource_text(content, name):
    """A text of a file's version resource."""
    resource = content[content.index("VS_VERSION_INFO".encode("utf-16-le")):]
    return re.search(name.encode("utf-16-le") + rb"(?:\0\0)+((?:[^\0]\0)+)", resource)[1].decode("utf-16-le")


@dataclass(frozen=True)
class Product:
    """One build of one publisher for one service."""

    version: str  # three numbers
    host: str
    publisher: str
    site: str  # the address of the publisher's pages about it

    @property
    def name(self):
        """The name of the product and of its folder."""
        return "Detection" if self.publisher == OWN_PUBLISHER else f"{self.publisher} Detection"

    def display_name(self, scope):
        return self.name if scope == "machine" else f"{self.name} (user)"

    def _by_publisher(self, code):
        """Another publisher's packages are other products with other components, and leave each other alone."""
        return code if self.publisher == OWN_PUBLISHER else str(uuid.uuid5(uuid.UUID(code), self.publisher)).upper()

    def upgrade_code(self, scope):
        return self._by_publisher(UPGRADE_CODES[scope])

    def component_code(self, kind):
        return self._by_publisher(COMPONENTS[kind])

    def product_code(self, scope):
        """The code of this version for this host. A package for another host has another code, so that it replaces an
        installed one of the same version: with one code for both, the system would keep the earlier DLL."""
        return self.package_code(scope, f"{self.host} {self.version}")

    def package_code(self, scope, content):
        """The code of a package with that content."""
        return str(uuid.uuid5(NAMESPACE, f"{self.upgrade_code(scope)} {content}")).upper()

    def package_name(self, scope):
        return f"Detection-{self.version}-x64{'' if scope == 'machine' else '-user'}.msi"

    def folder(self, scope):
        return ("%ProgramFiles%" if scope == "machine" else r"%LOCALAPPDATA%\Programs") + "\\" + self.name


def read_product(dll, version, site):
    """The product that a DLL is part of, which its version resource names."""
    content = dll.read_bytes()
    host = resource_text(content, "Comments").removeprefix("Service: ")
    return Product(version, host, resource_text(content, "CompanyName"), site)
