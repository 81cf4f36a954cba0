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

# The second build of the kernels stands where the loader looks for it, and is taken where it can run.
second = "lib/glibc-hwcaps/x86-64-v3/liborvgenm7.so.6.1"
held = {path.relative_to(package).as_posix() for path in package.glob("lib/**/*.so*")}
assert held == {"lib/liborvgenm7.so.6.1", "lib/liborvgenbatch.so.1", "lib/liborvcorexwide.so.6.1", second}, held
flags = set(pathlib.Path("/proc/cpuinfo").read_text().partition("flags")[2].partition("\n")[0].split())
level3 = {"avx", "avx2", "bmi1", "bmi2", "f16c", "fma", "abm", "movbe", "xsave"} <= flags
assert pathlib.Path(which.kernels) == package / (second if level3 else "lib/liborvgenm7.so.6.1"), which

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
