# SPDX-License-Identifier: MIT
"""A clean copy of the tree can be installed: it configures, and its build knows of every file it needs.

The whole of it, `pip install .` and a wheel, `./dev python` does out of the build that there is."""

import json
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).parents[2]


@pytest.fixture(scope="module")
def copy(tmp_path_factory):
    """What is committed or will be, and nothing that builds have left."""
    folder = tmp_path_factory.mktemp("copy")
    files = subprocess.run(["git", "ls-files", "-z", "-c", "-o", "--exclude-standard"], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout.split("\0")
    for file in filter(None, files):
        if (ROOT / file).exists():
            (folder / file).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / file, folder / file)
    return folder


def commands(folder, prefix, **environment):
    """Those of setup.py in that folder."""
    code = "import json, setup, sys; print(json.dumps(setup.commands(sys.argv[1])))"
    done = subprocess.run([sys.executable, "-c", code, str(prefix)], cwd=folder, check=True, capture_output=True,
                          text=True, env={"PATH": "/usr/bin:/bin", **environment})
    return json.loads(done.stdout)


def test_a_clean_copy_builds_what_the_package_holds(copy, tmp_path):
    configure, build, install = commands(copy, tmp_path / "to")
    subprocess.run(configure, check=True, capture_output=True, text=True)
    assert not any((copy / "build/kernels").glob("*.s"))
    folder, target = Path(build[build.index("--build") + 1]), build[-1]
    done = subprocess.run(["ninja", "-C", folder, "-t", "inputs", target], check=True, capture_output=True, text=True)
    needed = set(done.stdout.splitlines())
    sources = {Path(path) for path in needed if Path(path).is_relative_to(copy)}
    sources = {path for path in sources if not path.is_relative_to(copy / "build")}
    assert len(sources) > 100 and all(path.exists() for path in sources)
    for part in ("build/kernels/orvgDFTFwd_CToC_64_32fc.s", "build/kernels/x86-64-v3/orvgWHT_13_64f.s",
                 "build/kernels/owngBatchHartley_64_64f_avx512.s"):
        assert str(copy / part) in needed, part
    for part in ("lib/liborvgenm7.so.6.1", "lib-x86-64-v3/liborvgenm7.so.6.1", "lib/liborvgenbatch.so.1",
                 "lib/liborvcorexwide.so.6.1", "bin/write_kernels"):
        assert part in needed, part
    assert install[-2:] == ["--prefix", str(tmp_path / "to")] and "python" in install


def test_options_come_from_the_environment(copy, tmp_path):
    configure, *_ = commands(copy, tmp_path, ORVGEN_CMAKE_ARGS="-DORVGEN_KERNEL_DIR=/a -DORVGEN_V3=OFF")
    assert configure[-2:] == ["-DORVGEN_KERNEL_DIR=/a", "-DORVGEN_V3=OFF"]
    assert f"-DPython_EXECUTABLE={sys.executable}" in configure
    configure, build, _ = commands(copy, tmp_path, ORVGEN_BUILD_DIR=str(tmp_path))
    assert configure[3:] == ["-B", str(tmp_path), "-DORVGEN_PYTHON=ON"] and str(tmp_path) in build
