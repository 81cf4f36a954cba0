# SPDX-License-Identifier: MIT
# The bill of materials, installed beside the licence: the target orvgen_bill, file ORVGEN_BILL. Without Python there is none.
if(NOT ORVGEN_INSTALL OR ORVGEN_SANITIZE)
    return()
endif()
find_package(Python3 3.9 QUIET COMPONENTS Interpreter)
if(NOT Python3_FOUND)
    message(STATUS "orvgen: no Python 3.9, so no bill of materials")
    return()
endif()
set(ORVGEN_BILL ${PROJECT_BINARY_DIR}/orvgen.cdx.json)
file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h ${PROJECT_SOURCE_DIR}/include/*.hpp)
add_custom_command(OUTPUT ${ORVGEN_BILL}
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/release/bill.py ${PROJECT_SOURCE_DIR} ${ORVGEN_BILL}
            $<TARGET_FILE:orvgen> $<TARGET_FILE:orvgen_batch>
    DEPENDS orvgen orvgen_batch ${headers} ${PROJECT_SOURCE_DIR}/tools/release/bill.py ${PROJECT_SOURCE_DIR}/LICENSE
    COMMENT "Writing the bill of materials" VERBATIM)
add_custom_target(orvgen_bill ALL DEPENDS ${ORVGEN_BILL})
