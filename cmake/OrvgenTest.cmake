# SPDX-License-Identifier: MIT
# orvgen_add_test(NAME sources... [LIBS targets...] [SHARDS n] [BOTH_BUILDS | BOTH_FILES]): one GoogleTest program, run by
# ctest in n shards. BOTH_BUILDS: it takes the product from the shared library, and is run once more, as NAME.v3, with the
# second build in the first one's place; either time it makes sure that it got the build that it was to get. BOTH_FILES:
# the same for one that reads or loads the library's file by itself (tests/support/library_file.h). Each run leaves its cases in build/<preset>/test-results/, where `./dev test` counts them.
function(orvgen_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "BOTH_BUILDS;BOTH_FILES" "SHARDS" "LIBS")
    find_package(GTest REQUIRED)
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src
                                               ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE ORVGEN_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
    target_link_libraries(${name} PRIVATE ${arg_LIBS} GTest::gtest GTest::gtest_main)
    if(NOT arg_SHARDS)
        set(arg_SHARDS 1)
    endif()
    if(NOT arg_BOTH_BUILDS AND NOT arg_BOTH_FILES)
        orvgen_run_test(${name} ${name} ${arg_SHARDS})
        return()
    endif()
    add_dependencies(${name} orvgen)
    if(arg_BOTH_BUILDS)
        target_link_libraries(${name} PRIVATE orvgen_expected_library orvgen_processor_level orvgen)
    else()
        target_link_libraries(${name} PRIVATE orvgen_library_file)
    endif()
    orvgen_run_test(${name} ${name} ${arg_SHARDS} "ORVGEN_TEST_LIBRARY=$<TARGET_FILE:orvgen>")
    if(ORVGEN_V3)
        add_dependencies(${name} orvgen_v3)
        orvgen_run_test(${name}.v3 ${name} ${arg_SHARDS}
            "ORVGEN_TEST_LIBRARY=$<TARGET_FILE:orvgen_v3>" ORVGEN_TEST_LEVEL=x86-64-v3
            # The core library stands beside the first build.
            "LD_LIBRARY_PATH=$<TARGET_FILE_DIR:orvgen_v3>:$<TARGET_FILE_DIR:orvgen>")
    endif()
endfunction()

# orvgen_run_test(NAME PROGRAM SHARDS variable=value...): the entries of ctest for one program in one environment.
function(orvgen_run_test name program shards)
    math(EXPR last "${shards} - 1")
    foreach(i RANGE ${last})
        set(test ${name})
        if(shards GREATER 1)
            set(test ${name}.${i})
        endif()
        add_test(NAME ${test} COMMAND ${program})
        set(environment "GTEST_OUTPUT=xml:${PROJECT_BINARY_DIR}/test-results/${test}.xml"
            GTEST_TOTAL_SHARDS=${shards} GTEST_SHARD_INDEX=${i} ${ARGN})
        set_tests_properties(${test} PROPERTIES ENVIRONMENT "${environment}")
    endforeach()
endfunction()
