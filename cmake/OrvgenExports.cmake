# SPDX-License-Identifier: MIT
# The names that the library exports, read from the lists of the public header, so that neither the version script nor
# the kernel rules repeat them. Results: ORVGEN_EXPORTS (sorted), the version script in ORVGEN_VERSION_SCRIPT, and in
# ORVGEN_DISPATCHERS one line of src/frame/dispatch.h for each by-length function.

set(header ${PROJECT_SOURCE_DIR}/include/orvgen.h)
set(names ${PROJECT_SOURCE_DIR}/src/frame/exports.c)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header} ${names})

execute_process(
    COMMAND ${CMAKE_C_COMPILER} -E -P -I${PROJECT_SOURCE_DIR}/include ${names}
    OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "EXPORTED [A-Za-z0-9_]+" rows "${text}")
list(TRANSFORM rows REPLACE "EXPORTED " "" OUTPUT_VARIABLE ORVGEN_EXPORTS)
list(SORT ORVGEN_EXPORTS)
string(REGEX MATCHALL "ORVGEN_[A-Z]+_DISPATCHER\\([^)]+\\)" ORVGEN_DISPATCHERS "${text}")

list(JOIN ORVGEN_EXPORTS ";\n    " rows)
set(ORVGEN_VERSION_SCRIPT ${PROJECT_BINARY_DIR}/orvgen.map)
file(CONFIGURE OUTPUT ${ORVGEN_VERSION_SCRIPT} CONTENT "{\nglobal:\n    ${rows};\nlocal:\n    *;\n};\n")
list(JOIN ORVGEN_EXPORTS "\n" rows)
file(WRITE ${PROJECT_BINARY_DIR}/exports.txt "${rows}\n")

# orvgen_family_members(FAMILY ELEMENT OUT): the lengths (or orders) that the header lists for one family, ascending,
# for example orvgen_family_members(DFTFwd_CToC 32fc lengths).
function(orvgen_family_members family element out)
    set(members "")
    foreach(name IN LISTS ORVGEN_EXPORTS)
        if(name MATCHES "^orvg${family}_([0-9]+)_${element}$")
            list(APPEND members ${CMAKE_MATCH_1})
        endif()
    endforeach()
    list(SORT members COMPARE NATURAL)
    set(${out} ${members} PARENT_SCOPE)
endfunction()
