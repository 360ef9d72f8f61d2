#!/usr/bin/env python3
"""Prints the bill of materials of Debian packages as SPDX 2.3 JSON: names, versions, licences, the files with their
checksums, and the packages that they depend on.

Usage: scripts/sbom.py PACKAGE.deb... >FILE.spdx.json

The time of creation is SOURCE_DATE_EPOCH, if it is set, so that two builds give the same text.
"""
import hashlib
import io
import json
import os
import re
import subprocess
import sys
import tarfile
import time

LICENCE = "MIT"
COPYRIGHT = "Copyright (c) 2026 the libvexautilutil_utils authors"
NAMESPACE = "https://vexautilutil.example/spdx/"
UNKNOWN = "NOASSERTION"


def spdx_id(*words):
    """Returns an identifier; it may only have letters, digits, '.' and '-'."""
    return "SPDXRef-" + "-".join(re.sub(r"[^A-Za-z0-9.]", "-", word) for word in words)


def checksum(algorithm, content):
    value = hashlib.new(algorithm, content, usedforsecurity=False).hexdigest()
    return {"algorithm": algorithm.upper(), "checksumValue": value}


def field_of(package, name):
    return subprocess.run(["dpkg-deb", "--field", package, name], check=True, capture_output=True, text=True).stdout.strip()


def files_of(package):
    """Returns the names and the contents of the regular files in a package, in the order of the names."""
    archive = subprocess.run(["dpkg-deb", "--fsys-tarfile", package], check=True, capture_output=True).stdout
    with tarfile.open(fileobj=io.BytesIO(archive)) as tar:
        return sorted((member.name, tar.extractfile(member).read()) for member in tar if member.isreg())


def file_entry(package, name, content):
    digest = hashlib.sha1(name.encode(), usedforsecurity=False).hexdigest()  # two names may differ in other characters only
    return {
        "SPDXID": spdx_id("File", package, digest),
        "fileName": name,
        "checksums": [checksum("sha1", content), checksum("sha256", content)],
        "licenseConcluded": LICENCE,
        "licenseInfoInFiles": [UNKNOWN],
        "copyrightText": COPYRIGHT,
    }


def verification_code(files):
    """Returns the code that SPDX defines: the SHA1 of the sorted SHA1s of the files."""
    sums = sorted(entry["checksums"][0]["checksumValue"] for entry in files)
    return hashlib.sha1("".join(sums).encode(), usedforsecurity=False).hexdigest()


def package_entry(path, name, files):
    with open(path, "rb") as package:
        content = package.read()
    return {
        "SPDXID": spdx_id("Package", name),
        "name": name,
        "versionInfo": field_of(path, "Version"),
        "packageFileName": os.path.basename(path),
        "supplier": "Organization: vexautilutil",
        "downloadLocation": UNKNOWN,
        "filesAnalyzed": True,
        "packageVerificationCode": {"packageVerificationCodeValue": verification_code(files)},
        "checksums": [checksum("sha256", content)],
        "licenseConcluded": LICENCE,
        "licenseDeclared": LICENCE,
        "licenseInfoFromFiles": [UNKNOWN],
        "copyrightText": COPYRIGHT,
    }


def dependencies_of(path):
    """Returns the names of the packages that a package needs, with what their versions must be."""
    for alternatives in filter(None, field_of(path, "Depends").split(",")):
        name, _, version = alternatives.split("|")[0].strip().partition(" ")
        yield name.partition(":")[0], version.strip("()")


def foreign_entry(name, version):
    entry = {
        "SPDXID": spdx_id("Package", name),
        "name": name,
        "downloadLocation": UNKNOWN,
        "filesAnalyzed": False,
        "licenseConcluded": UNKNOWN,
        "licenseDeclared": UNKNOWN,
        "copyrightText": UNKNOWN,
        "externalRefs": [
            {
                "referenceCategory": "PACKAGE-MANAGER",
                "referenceType": "purl",
                "referenceLocator": "pkg:deb/debian/" + name,
            }
        ],
    }
    if version:
        entry["comment"] = "The version must be " + version
    return entry


def relationship(start, kind, end):
    return {"spdxElementId": start, "relationshipType": kind, "relatedSpdxElement": end}


def document_of(paths):
    packages, files, relationships, needed = {}, [], [], []
    for path in sorted(paths):
        name = field_of(path, "Package")
        own_files = [file_entry(name, *file) for file in files_of(path)]
        packages[name] = package_entry(path, name, own_files)
        files += own_files
        own = packages[name]["SPDXID"]
        relationships.append(relationship("SPDXRef-DOCUMENT", "DESCRIBES", own))
        relationships += [relationship(own, "CONTAINS", entry["SPDXID"]) for entry in own_files]
        needed += [(own, *dependency) for dependency in dependencies_of(path)]
    for own, name, version in needed:
        packages.setdefault(name, foreign_entry(name, version))
        relationships.append(relationship(own, "DEPENDS_ON", packages[name]["SPDXID"]))
    sums = "".join(entry["checksums"][0]["checksumValue"] for entry in packages.values() if entry["filesAnalyzed"])
    now = time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time())))
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": "vexautilutil",
        "documentNamespace": NAMESPACE + hashlib.sha256(sums.encode()).hexdigest(),
        "creationInfo": {"created": time.strftime("%Y-%m-%dT%H:%M:%SZ", now), "creators": ["Tool: sbom.py"]},
        "packages": list(packages.values()),
        "files": files,
        "relationships": relationships,
    }


def main():
    if len(sys.argv) < 2 or sys.argv[1] in ("-h", "--help"):
        print(__doc__.strip(), file=sys.stderr if len(sys.argv) < 2 else sys.stdout)
        return 2 if len(sys.argv) < 2 else 0
    json.dump(document_of(sys.argv[1:]), sys.stdout, indent=2)
    print()
    return 0


sys.exit(main())
