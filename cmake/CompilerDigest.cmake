# SPDX-License-Identifier: MIT
# cmake -DSOURCES=... -DOUT=header -P CompilerDigest.cmake: one word for all sources of the kernel compiler. The header
# is written only when the word changes.
set(digests "")
foreach(source IN LISTS SOURCES)
    file(SHA256 ${source} digest)
    string(APPEND digests ${digest})
endforeach()
string(SHA256 digest "${digests}")
file(CONFIGURE OUTPUT ${OUT} CONTENT "#pragma once\nconstexpr const char* compilerDigest = \"${digest}\";\n")
