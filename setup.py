# SPDX-License-Identifier: MIT
"""Builds the Python package by CMake; pyproject.toml says the rest.

The environment may name what there is already: ORVGEN_BUILD_DIR, a build folder of CMake, and
ORVGEN_CMAKE_ARGS, further options of CMake, as `-DORVGEN_WIDE_TARGETS=AVX2`. Without these, kernels
that other builds of this tree have written into build/kernels are taken.
"""

import os
import re
import shlex
import shutil
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent


def release():
    """It stands in the public header, and nowhere else."""
    header = (ROOT / "include" / "orvgen.h").read_text()
    return re.search(r'^#define ORVGEN_VERSION_TEXT "(.*)"', header, re.M).group(1)


def commands(prefix):
    """What configures, builds and installs the package into the folder."""
    known = os.environ.get("ORVGEN_BUILD_DIR")
    build = Path(known or ROOT / "build" / "python").resolve()
    options = ["-DORVGEN_PYTHON=ON"]
    if not known:
        options += [f"-DORVGEN_{part}=OFF" for part in ("TESTS", "BENCH", "EXAMPLES")]
        options += [
            f"-DORVGEN_KERNEL_DIR={ROOT / 'build' / 'kernels'}",
            f"-DPython_EXECUTABLE={sys.executable}",
            "-DCMAKE_BUILD_TYPE=Release",
        ]
        options += ["-G", "Ninja"] if shutil.which("ninja") else []
    # The last one of the same name counts.
    options += shlex.split(os.environ.get("ORVGEN_CMAKE_ARGS", ""))
    jobs = len(os.sched_getaffinity(0))
    return [
        [str(word) for word in command]
        for command in (
            ["cmake", "-S", ROOT, "-B", build, *options],
            ["cmake", "--build", build, "-j", jobs, "--target", "orvgen_python_package"],
            ["cmake", "--install", build, "--component", "python", "--prefix", prefix],
        )
    ]


class BuildByCMake(build_ext):
    def run(self):
        prefix = Path(self.build_lib).resolve()
        # The folder is packed as it is: nothing of an older build may be left in it.
        shutil.rmtree(prefix / "orvgen", ignore_errors=True)
        for command in commands(prefix):
            subprocess.run(command, check=True)


if __name__ == "__main__":
    setup(
        version=release(),
        packages=[],
        ext_modules=[Extension("orvgen._batch", sources=[])],
        cmdclass={"build_ext": BuildByCMake},
    )
