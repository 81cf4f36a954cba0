# SPDX-License-Identifier: MIT
# The names that the library exports, which are those that the public header declares, and the lists of the header, so
# that neither the version script nor the kernel rules repeat them. Results: ORVGEN_EXPORTS (sorted), the version script
# in ORVGEN_VERSION_SCRIPT, in ORVGEN_MEMBERS a row `NAME T N` for each kernel, and in ORVGEN_DISPATCHERS one line of
# src/frame/dispatch.h for each by-length function.

set(header ${PROJECT_SOURCE_DIR}/include/orvgen.h)
set(lists ${PROJECT_SOURCE_DIR}/src/frame/lists.c)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header} ${lists})

execute_process(
    COMMAND ${CMAKE_C_COMPILER} -E -P -I${PROJECT_SOURCE_DIR}/include ${lists}
    OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "orvg[A-Za-z0-9_]+ *\\(" ORVGEN_EXPORTS "${text}")
list(TRANSFORM ORVGEN_EXPORTS REPLACE " *\\(" "")
list(SORT ORVGEN_EXPORTS)
string(REGEX MATCHALL "MEMBER [A-Za-z0-9_]+ [0-9a-z]+ [0-9]+" ORVGEN_MEMBERS "${text}")
list(TRANSFORM ORVGEN_MEMBERS REPLACE "MEMBER " "")
string(REGEX MATCHALL "ORVGEN_[A-Z]+_DISPATCHER\\([^)]+\\)" ORVGEN_DISPATCHERS "${text}")

list(JOIN ORVGEN_EXPORTS ";\n    " rows)
set(ORVGEN_VERSION_SCRIPT ${PROJECT_BINARY_DIR}/orvgen.map)
file(CONFIGURE OUTPUT ${ORVGEN_VERSION_SCRIPT} CONTENT "{\nglobal:\n    ${rows};\nlocal:\n    *;\n};\n")
list(JOIN ORVGEN_EXPORTS "\n" rows)
file(WRITE ${PROJECT_BINARY_DIR}/exports.txt "${rows}\n")

# orvgen_family_members(FAMILY ELEMENT OUT): the lengths (or orders) that the header lists for one family, ascending,
# for example orvgen_family_members(DFTFwd_CToC 32fc lengths).
function(orvgen_family_members family element out)
    set(members ${ORVGEN_MEMBERS})
    list(FILTER members INCLUDE REGEX "^${family} ${element} ")
    list(TRANSFORM members REPLACE "^${family} ${element} " "")
    set(${out} ${members} PARENT_SCOPE)
endfunction()
