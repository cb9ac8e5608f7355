#!/usr/bin/env python3
"""Writes the software bill of materials (SPDX 2.3, JSON) of the Debian packages that a build made.

Usage: sbom.py BUILD > apconf.spdx.json

What the packages hold is read from them; what they are linked with from the programs' NEEDED lines; what was compiled in
from the compiler's own record of the headers that it read. licences.json knows the licence of each, by source package,
and whose headers hold nothing but declarations.
"""
import hashlib
import json
import os
import re
import subprocess
import sys
import tempfile
import time
import uuid
from pathlib import Path

OWN_LICENCE = "MIT"
KNOWN = json.loads((Path(__file__).parent / "licences.json").read_text())
LICENCES = KNOWN["licences"]
# Which of our packages an object file of the build ends up in.
OBJECTS = {"CMakeFiles/apconf_objects.dir": "libapconf1", "host": "apconf"}


def output(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


def digest(algorithm, path):
    return hashlib.new(algorithm, path.read_bytes()).hexdigest()


def identifier(*words):
    return "SPDXRef-" + "-".join(re.sub(r"[^A-Za-z0-9.-]+", "-", word.strip("./")) for word in words)


def owners(paths):
    """The Debian packages that hold the files. A path below / may be recorded below /usr, or the other way round."""
    names = {path: {path, path.removeprefix("/usr"), "/usr" + path} for path in paths}
    if not names:
        return set()
    listing = subprocess.run(["dpkg-query", "-S", *set.union(*names.values())], capture_output=True, text=True).stdout
    holders = {path: packages.split(",")[0]
               for packages, path in re.findall(r"^(\S.*?): (/.*)$", listing, re.M) if "diversion by" not in packages}
    found = {path: next((holders[name] for name in aliases if name in holders), None)
             for path, aliases in names.items()}
    for path, package in found.items():
        if not package:
            sys.exit(f"sbom.py: no package holds {path}")
    return set(found.values())


class Dependency:
    """A package of the distribution that a program of ours is linked with, or holds code of."""

    def __init__(self, package):
        fields = output("dpkg-query", "-W", "-f", "${Package}\t${source:Package}\t${Version}\t${Architecture}", package)
        self.name, self.source, self.version, self.architecture = fields.split("\t")
        if self.source not in LICENCES:
            sys.exit(f"sbom.py: the licence of source package '{self.source}' ({self.name}) is not in licences.json")
        self.id = identifier("Dependency", self.name)

    def describe(self):
        return {
            "SPDXID": self.id,
            "name": self.name,
            "versionInfo": self.version,
            "supplier": "Organization: Debian",
            "downloadLocation": "NOASSERTION",
            "filesAnalyzed": False,
            "licenseConcluded": LICENCES[self.source],
            "licenseDeclared": LICENCES[self.source],
            "copyrightText": "NOASSERTION",
            "externalRefs": [{
                "referenceCategory": "PACKAGE-MANAGER",
                "referenceType": "purl",
                "referenceLocator": f"pkg:deb/debian/{self.name}@{self.version}?arch={self.architecture}&distro=bookworm",
            }],
        }


def needed_libraries(program, own):
    """Paths of the libraries that a program asks for, but for those that are ours."""
    names = re.findall(r"\(NEEDED\).*\[(.*)\]", output("readelf", "-dW", program))
    found = dict(re.findall(r"^\s*(\S+) => (/\S+)", output("ldd", program), re.M))
    return [os.path.realpath(found[name]) for name in names if name not in own]


def headers_read(build):
    """For each of our packages the headers of others that were compiled in."""
    headers = {package: set() for package in OBJECTS.values()}
    package = None
    for line in output("ninja", "-C", build, "-t", "deps").splitlines():
        if not line.startswith(" "):
            package = next((name for prefix, name in OBJECTS.items() if line.startswith(prefix)), None)
        elif package:
            header = os.path.realpath(os.path.join(build, line.strip()))
            if header.startswith("/usr/"):
                headers[package].add(header)
    return headers


class Shipped:
    """One of our packages, with its files."""

    def __init__(self, deb, tree):
        self.deb = deb
        self.name, self.version = output("dpkg-deb", "--show", "--showformat", "${Package}\n${Version}", deb).split("\n")
        self.id = identifier("Package", self.name)
        self.root = tree / self.name
        subprocess.run(["dpkg-deb", "-x", deb, self.root], check=True)
        self.files = sorted(path for path in self.root.rglob("*") if path.is_file() and not path.is_symlink())

    def file_name(self, path):
        return "./" + str(path.relative_to(self.root))

    def file_id(self, path):
        return identifier("File", self.name, self.file_name(path))

    def programs(self):
        return [path for path in self.files if path.read_bytes()[:4] == b"\x7fELF"]

    def describe(self, licence):
        codes = "".join(sorted(digest("sha1", path) for path in self.files))
        return {
            "SPDXID": self.id,
            "name": self.name,
            "versionInfo": self.version,
            "packageFileName": self.deb.name,
            "supplier": "Organization: The apconf developers",
            "downloadLocation": "NOASSERTION",
            "filesAnalyzed": True,
            "packageVerificationCode": {"packageVerificationCodeValue": hashlib.sha1(codes.encode()).hexdigest()},
            "checksums": [{"algorithm": "SHA256", "checksumValue": digest("sha256", self.deb)}],
            "licenseConcluded": licence,
            "licenseDeclared": OWN_LICENCE,
            "licenseInfoFromFiles": [OWN_LICENCE],
            "copyrightText": "Copyright (c) 2026 The apconf developers",
        }

    def describe_file(self, path):
        return {
            "SPDXID": self.file_id(path),
            "fileName": self.file_name(path),
            "fileTypes": ["BINARY" if path in self.programs() else "OTHER"],
            "checksums": [{"algorithm": algorithm, "checksumValue": digest(algorithm.lower(), path)}
                          for algorithm in ("SHA1", "SHA256")],
            "licenseConcluded": OWN_LICENCE,
            "licenseInfoInFiles": [OWN_LICENCE],
            "copyrightText": "NOASSERTION",
        }


def bill(build, tree):
    shipped = [Shipped(deb, tree) for deb in sorted((build / "packages").glob("*.deb"))]
    own_libraries = {path.name.removesuffix(".0.0") for package in shipped for path in package.programs()}
    dependencies, relations, packages, files = {}, [], [], []

    def relate(one, kind, other):
        relations.append({"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other})

    def dependency(package):
        return dependencies.setdefault(package, Dependency(package))

    compiled = headers_read(build)
    for package in shipped:
        relate("SPDXRef-DOCUMENT", "DESCRIBES", package.id)
        linked = set()
        for path in package.files:
            files.append(package.describe_file(path))
            relate(package.id, "CONTAINS", package.file_id(path))
            if path in package.programs():
                for name in sorted(owners(needed_libraries(path, own_libraries))):
                    linked.add(dependency(name).source)
                    relate(package.file_id(path), "DYNAMIC_LINK", dependency(name).id)
        licences = {OWN_LICENCE}
        for name in sorted(owners(compiled.get(package.name, ()))):
            # The headers of a library that is linked are its interface; of one that is not, they are the library.
            source = dependency(name).source
            if source in linked or source in KNOWN["declarations_only"]:
                relate(dependency(name).id, "BUILD_DEPENDENCY_OF", package.id)
                continue
            relate(package.id, "STATIC_LINK", dependency(name).id)
            # An exception is there so that what the compiler copies in leaves the program's terms alone.
            if " WITH " not in LICENCES[source]:
                licences.add(LICENCES[source])
        packages.append(package.describe(" AND ".join(sorted(licences, key=lambda text: (text != OWN_LICENCE, text)))))
        if package.name != "libapconf1":
            relate(package.id, "DEPENDS_ON", identifier("Package", "libapconf1"))

    packages += [entry.describe() for _, entry in sorted(dependencies.items())]
    version = shipped[0].version
    names = "".join(digest("sha256", package.deb) for package in shipped)
    created = time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time())))
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"apconf-{version}",
        "documentNamespace": f"urn:uuid:{uuid.uuid5(uuid.NAMESPACE_OID, names)}",
        "creationInfo": {
            "created": time.strftime("%Y-%m-%dT%H:%M:%SZ", created),
            "creators": ["Organization: The apconf developers", "Tool: apconf-sbom-1.0"],
        },
        "packages": packages,
        "files": files,
        "relationships": relations,
    }


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory() as tree:
        json.dump(bill(Path(sys.argv[1]), Path(tree)), sys.stdout, indent=1)
        print()


if __name__ == "__main__":
    main()
