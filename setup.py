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

root = Path(__file__).resolve().parent
# The release stands in the public header, and nowhere else.
header = (root / "include" / "orvgen.h").read_text()
release = re.search(r'^#define ORVGEN_VERSION_TEXT "(.*)"', header, re.M).group(1)


class BuildByCMake(build_ext):
    def run(self):
        known = os.environ.get("ORVGEN_BUILD_DIR")
        build = Path(known or root / "build" / "python").resolve()
        options = ["-DORVGEN_PYTHON=ON"]
        if not known:
            options += [f"-DORVGEN_{part}=OFF" for part in ("TESTS", "BENCH", "EXAMPLES")]
            options += [
                f"-DORVGEN_KERNEL_DIR={root / 'build' / 'kernels'}",
                f"-DPython_EXECUTABLE={sys.executable}",
                "-DCMAKE_BUILD_TYPE=Release",
            ]
            options += ["-G", "Ninja"] if shutil.which("ninja") else []
        options += shlex.split(os.environ.get("ORVGEN_CMAKE_ARGS", ""))
        jobs = str(len(os.sched_getaffinity(0)))
        for command in (
            ["cmake", "-S", root, "-B", build, *options],
            ["cmake", "--build", build, "-j", jobs, "--target", "orvgen_python_package"],
            ["cmake", "--install", build, "--component", "python", "--prefix", Path(self.build_lib).resolve()],
        ):
            subprocess.run([str(word) for word in command], check=True)


setup(
    version=release,
    packages=[],
    ext_modules=[Extension("orvgen._batch", sources=[])],
    cmdclass={"build_ext": BuildByCMake},
)
