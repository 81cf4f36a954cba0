# SPDX-License-Identifier: MIT
"""installed.py FOLDER: the package that is installed in the environment FOLDER stands on its own."""

import pathlib
import subprocess
import sys
import sysconfig

import numpy as np

import orvgen

folder = pathlib.Path(sys.argv[1]).resolve()
package = pathlib.Path(orvgen.__file__).resolve().parent
assert folder in package.parents, package

# Every library of ours that is loaded comes with the package.
loaded = {line.split()[-1] for line in open("/proc/self/maps") if "/liborv" in line}
assert len(loaded) == 3 and all(pathlib.Path(path).parent.is_relative_to(package) for path in loaded), loaded
which = orvgen.which()
assert {which.kernels, which.batch} <= loaded, which

# Nothing that is installed searches where it was built.
for library in [*package.glob("*.so"), *package.glob("lib/**/*.so*")]:
    head = subprocess.run(["readelf", "-d", library], capture_output=True, text=True, check=True).stdout
    paths = [line for line in head.splitlines() if "RPATH" in line or "RUNPATH" in line]
    assert all("[$ORIGIN" in line for line in paths), (library, paths)

assert (package / "py.typed").exists() and (package / "_batch.pyi").exists()
assert len(orvgen.kernels()) == 1160
x = np.ones((3, 48), np.float32)
assert np.allclose(orvgen.rfft(x), np.fft.rfft(x), atol=1e-5)
print(f"installed: orvgen {orvgen.__version__} for Python {sysconfig.get_python_version()} on {which.target}, "
      f"kernels from {pathlib.Path(which.kernels).relative_to(package)}")
