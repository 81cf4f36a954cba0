# SPDX-License-Identifier: MIT
"""bill.py BILL INCLUDE RELEASE: the bill of materials says what is true of the headers and libraries."""

import hashlib
import json
import sys
from pathlib import Path

bill = json.loads(Path(sys.argv[1]).read_text())
include, release = Path(sys.argv[2]), sys.argv[3]
assert (bill["bomFormat"], bill["specVersion"]) == ("CycloneDX", "1.4")
product = bill["metadata"]["component"]
assert product["version"] == release and product["licenses"] == [{"license": {"id": "MIT"}}], product

parts = {part["bom-ref"]: part for part in bill["components"]}
assert len(parts) == len(bill["components"]), "a reference twice"
needs = {row["ref"]: row["dependsOn"] for row in bill["dependencies"]}
for name, some in needs.items():
    assert name in parts or name == "orvgen", name
    assert set(some) <= set(parts), f"{name} needs what is not listed: {some}"
assert needs["orvgen"] == ["liborvgenbatch.so.1", "liborvgenm7.so.6.1"], needs
assert needs["liborvgenm7.so.6.1"] == ["libc.so.6", "libm.so.6", "liborvcorexwide.so.6.1"], needs
assert set(needs["liborvgenbatch.so.1"]) - {"libc.so.6"} == {"liborvgenm7.so.6.1"}, needs

headers = {f"include/{p.relative_to(include)}" for p in include.rglob("*.h*")}
assert {name for name in parts if parts[name]["type"] == "file"} == headers
for name in headers:
    digest = hashlib.sha256((include.parent / name).read_bytes()).hexdigest()
    assert parts[name]["hashes"] == [{"alg": "SHA-256", "content": digest}], name
print(f"{len(parts)} parts, {len(headers)} headers")
