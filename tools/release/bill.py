# SPDX-License-Identifier: MIT
"""bill.py ROOT OUT LIBRARY...: the bill of materials of an installed orvgen, in CycloneDX's JSON: the
libraries with what the loader has to find for them, and the headers with their digests.

Nothing of others is part of the files, so that what is listed beside them is needed, not contained.
"""

import hashlib
import json
import re
import subprocess
import sys
from pathlib import Path

SUPPLIERS = {
    "liborvcorexwide.so.6.1": "the core library; a stand-in comes with this project",
    "libm.so.6": "the C library's mathematics",
    "libc.so.6": "the C library",
}


def dynamic(library, tag):
    text = subprocess.run(["readelf", "-dW", library], check=True, capture_output=True, text=True).stdout
    return re.findall(rf"\({tag}\).*\[(.*)\]", text)


def main():
    root, out, *libraries = sys.argv[1:]
    include = Path(root) / "include"
    release = re.search(r'ORVGEN_VERSION_TEXT "(.*)"', (include / "orvgen.h").read_text())[1]
    licence = (Path(root) / "LICENSE").read_text().split()[0]
    terms = [{"license": {"id": licence}}]
    product = {"type": "library", "bom-ref": "orvgen", "name": "orvgen", "version": release,
               "licenses": terms, "purl": f"pkg:generic/orvgen@{release}",
               "description": "Short signal transforms for x86-64, every length a function of its own"}

    components, needs = {}, {"orvgen": set()}
    for library in libraries:
        name = dynamic(library, "SONAME")[0]
        components[name] = {"type": "library", "bom-ref": name, "name": name, "version": release,
                            "licenses": terms}
        needs.setdefault(name, set()).update(dynamic(library, "NEEDED"))
        needs["orvgen"].add(name)
    for name in sorted({n for some in needs.values() for n in some} - set(components)):
        components[name] = {"type": "library", "bom-ref": name, "name": name, "scope": "required",
                            "description": SUPPLIERS[name]}
    for header in sorted([*include.glob("*.h"), *include.rglob("*.hpp")]):
        digest = hashlib.sha256(header.read_bytes()).hexdigest()
        name = f"include/{header.relative_to(include)}"
        components[name] = {"type": "file", "bom-ref": name, "name": name, "licenses": terms,
                            "hashes": [{"alg": "SHA-256", "content": digest}]}

    bill = {
        "bomFormat": "CycloneDX", "specVersion": "1.4", "version": 1,
        "metadata": {"component": product},
        "components": list(components.values()),
        "dependencies": [{"ref": name, "dependsOn": sorted(some)}
                         for name, some in sorted(needs.items())],
    }
    Path(out).write_text(json.dumps(bill, indent=2) + "\n")


main()
