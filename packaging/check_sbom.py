#!/usr/bin/env python3
"""Holds a bill of materials against the rules of SPDX 2.3 and against the packages that it describes.

Usage: check_sbom.py BILL PACKAGES
"""
import hashlib
import io
import json
import re
import subprocess
import sys
import tarfile
from pathlib import Path

IDENTIFIER = re.compile(r"SPDXRef-[A-Za-z0-9.-]+")
LICENCE = re.compile(r"[A-Za-z0-9.-]+\+?( WITH [A-Za-z0-9.-]+)?( (AND|OR) [A-Za-z0-9.-]+\+?( WITH [A-Za-z0-9.-]+)?)*")
CHECKSUM = {"SHA1": re.compile(r"[0-9a-f]{40}"), "SHA256": re.compile(r"[0-9a-f]{64}")}
RELATIONSHIPS = {"DESCRIBES", "CONTAINS", "DEPENDS_ON", "DYNAMIC_LINK", "STATIC_LINK", "BUILD_DEPENDENCY_OF"}
FIELDS = {
    "document": ("spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo", "packages",
                 "files", "relationships"),
    "package": ("SPDXID", "name", "versionInfo", "supplier", "downloadLocation", "filesAnalyzed", "licenseConcluded",
                "licenseDeclared", "copyrightText"),
    "file": ("SPDXID", "fileName", "checksums", "licenseConcluded", "licenseInfoInFiles", "copyrightText"),
    "relationship": ("spdxElementId", "relationshipType", "relatedSpdxElement"),
}


def lacks(kind, element):
    return [f"{kind} {element.get('SPDXID', '')} lacks {field}" for field in FIELDS[kind] if field not in element]


def check_document(bill):
    faults = lacks("document", bill)
    if faults:
        return faults
    if (bill["spdxVersion"], bill["dataLicense"], bill["SPDXID"]) != ("SPDX-2.3", "CC0-1.0", "SPDXRef-DOCUMENT"):
        faults.append("the document is not SPDX 2.3 under CC0-1.0")
    if not re.fullmatch(r"[a-z][a-z0-9+.-]*:[^#\s]+", bill["documentNamespace"]):
        faults.append(f"namespace '{bill['documentNamespace']}' is no absolute URI without fragment")
    creation = bill["creationInfo"]
    if not re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", creation["created"]):
        faults.append(f"created '{creation['created']}' is no time in UTC")
    faults += [f"creator '{name}' is no Person, Organization or Tool" for name in creation["creators"]
               if not re.match(r"(Person|Organization|Tool): \S", name)]
    return faults


def check_elements(bill):
    faults, seen = [], {"SPDXRef-DOCUMENT"}
    for kind, elements in (("package", bill["packages"]), ("file", bill["files"])):
        for element in elements:
            faults += lacks(kind, element)
            identifier = element.get("SPDXID", "")
            if not IDENTIFIER.fullmatch(identifier) or identifier in seen:
                faults.append(f"{kind} identifier '{identifier}' is malformed or taken")
            seen.add(identifier)
            for field in ("licenseConcluded", "licenseDeclared"):
                if field in element and (element[field] in ("NONE", "NOASSERTION") or not LICENCE.fullmatch(element[field])):
                    faults.append(f"{identifier}: {field} '{element[field]}' is no licence")
            for checksum in element.get("checksums", ()):
                form = CHECKSUM.get(checksum["algorithm"])
                if not form or not form.fullmatch(checksum["checksumValue"]):
                    faults.append(f"{identifier}: malformed checksum {checksum}")
            if element.get("filesAnalyzed") is False and "packageVerificationCode" in element:
                faults.append(f"{identifier} has a verification code without analysed files")
    related = set()
    for relation in bill["relationships"]:
        faults += lacks("relationship", relation)
        for end in ("spdxElementId", "relatedSpdxElement"):
            if relation[end] not in seen:
                faults.append(f"a relationship names '{relation[end]}', which does not exist")
            related.add(relation[end])
        if relation["relationshipType"] not in RELATIONSHIPS:
            faults.append(f"relationship type '{relation['relationshipType']}' is not one that we use")
    return faults + [f"nothing relates to {identifier}" for identifier in sorted(seen - related)]


def files_of(deb):
    archive = subprocess.run(["dpkg-deb", "--fsys-tarfile", deb], check=True, capture_output=True).stdout
    with tarfile.open(fileobj=io.BytesIO(archive)) as tar:
        return {member.name: hashlib.sha1(tar.extractfile(member).read()).hexdigest() for member in tar if member.isfile()}


def check_packages(bill, folder):
    faults = []
    files = {entry["SPDXID"]: entry for entry in bill["files"]}
    described = [relation["relatedSpdxElement"] for relation in bill["relationships"]
                 if relation["relationshipType"] == "DESCRIBES"]
    shipped = [package for package in bill["packages"] if package["SPDXID"] in described]
    if {package.get("packageFileName") for package in shipped} != {deb.name for deb in folder.glob("*.deb")}:
        return ["the packages described are not those in the folder"]
    for package in shipped:
        deb = folder / package["packageFileName"]
        if package["checksums"] != [{"algorithm": "SHA256", "checksumValue": hashlib.sha256(deb.read_bytes()).hexdigest()}]:
            faults.append(f"{deb.name} has another SHA256")
        listed = {}
        for relation in bill["relationships"]:
            if (relation["spdxElementId"], relation["relationshipType"]) == (package["SPDXID"], "CONTAINS"):
                entry = files[relation["relatedSpdxElement"]]
                sums = {checksum["algorithm"]: checksum["checksumValue"] for checksum in entry["checksums"]}
                listed[entry["fileName"]] = sums.get("SHA1")
        if listed != files_of(deb):
            faults.append(f"{deb.name} holds other files, or files with other contents")
        code = hashlib.sha1("".join(sorted(listed.values())).encode()).hexdigest()
        if package["packageVerificationCode"]["packageVerificationCodeValue"] != code:
            faults.append(f"{deb.name} has another verification code")
    return faults


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    bill = json.loads(Path(sys.argv[1]).read_text())
    faults = check_document(bill) or check_elements(bill) or check_packages(bill, Path(sys.argv[2]))
    for fault in faults:
        print(f"{sys.argv[1]}: {fault}", file=sys.stderr)
    if not faults:
        print(f"{sys.argv[1]}: {len(bill['packages'])} packages, {len(bill['files'])} files, "
              f"{len(bill['relationships'])} relationships")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
