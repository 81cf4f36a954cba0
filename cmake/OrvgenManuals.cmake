# SPDX-License-Identifier: MIT
# The manual pages, out of the text of the headers: the target orvgen_manuals, folder ORVGEN_MANUALS. Without Python there
# are none.
if(NOT ORVGEN_MAN)
    return()
endif()
find_package(Python3 3.9 QUIET COMPONENTS Interpreter)
if(NOT Python3_FOUND)
    message(STATUS "orvgen: no Python 3.9, so no manual pages")
    return()
endif()
set(ORVGEN_MANUALS ${PROJECT_BINARY_DIR}/man)
set(headers ${PROJECT_SOURCE_DIR}/include/orvgen.h ${PROJECT_SOURCE_DIR}/include/orvgen_batch.h)
add_custom_command(OUTPUT ${ORVGEN_MANUALS}/man7/orvgen.7
    COMMAND ${Python3_EXECUTABLE} -B ${PROJECT_SOURCE_DIR}/tools/reference/man.py ${PROJECT_SOURCE_DIR}/include
            ${ORVGEN_MANUALS}
    DEPENDS ${headers} ${PROJECT_SOURCE_DIR}/tools/reference/man.py ${PROJECT_SOURCE_DIR}/tools/reference/header.py
    COMMENT "Writing the manual pages" VERBATIM)
add_custom_target(orvgen_manuals ALL DEPENDS ${ORVGEN_MANUALS}/man7/orvgen.7)
