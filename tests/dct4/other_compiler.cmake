# SPDX-License-Identifier: MIT
# The plan machine built once more, by the compiler that the rest is not built with: g++ or clang++.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(other clang++)
else()
    set(other g++)
endif()
find_program(ORVGEN_OTHER_CXX_${other} ${other})
set(other ${ORVGEN_OTHER_CXX_${other}})
if(NOT other OR ORVGEN_SANITIZE)
    message(STATUS "No comparison of compilers: it needs g++ and clang++, without sanitizers")
    return()
endif()

# The product's flags for C++, without the generator expressions around them.
string(REGEX MATCHALL "-f[A-Za-z-]+(=[a-z]+)?" flags "${ORVGEN_PRODUCT_FLAGS}")
set(objects "")
get_target_property(sources orvgen_dct4 SOURCES)
get_target_property(folder orvgen_dct4 SOURCE_DIR)
foreach(source IN LISTS sources)
    set(object ${CMAKE_CURRENT_BINARY_DIR}/other/${source}.o)
    add_custom_command(
        OUTPUT ${object}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/other
        COMMAND ${CMAKE_CXX_COMPILER_LAUNCHER} ${other} -std=c++20 -O2 ${flags} -I${PROJECT_SOURCE_DIR}/include
                -I${PROJECT_SOURCE_DIR}/src -MD -MF ${object}.d -c ${folder}/${source} -o ${object}
        DEPENDS ${folder}/${source} DEPFILE ${object}.d
        VERBATIM)
    list(APPEND objects ${object})
endforeach()
set(library ${CMAKE_CURRENT_BINARY_DIR}/other/libdct4.so)
add_custom_command(
    OUTPUT ${library}
    COMMAND ${other} -shared -o ${library} ${objects} $<TARGET_FILE:orvcorexwide> -lm
    DEPENDS ${objects} orvcorexwide
    COMMAND_EXPAND_LISTS VERBATIM)
add_custom_target(orvgen_dct4_other DEPENDS ${library})

orvgen_add_test(test_dct4_compilers compilers_test.cpp LIBS ${CMAKE_DL_LIBS})
add_dependencies(test_dct4_compilers orvgen orvgen_dct4_other)
target_compile_definitions(test_dct4_compilers PRIVATE
    ORVGEN_LIBRARY_FILE="$<TARGET_FILE:orvgen>" ORVGEN_OTHER_LIBRARY="${library}")
