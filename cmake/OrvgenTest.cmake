# SPDX-License-Identifier: MIT
# orvgen_add_test(NAME sources... [LIBS targets...] [SHARDS n]): one GoogleTest program, run by ctest in n shards.
# Each run leaves its cases in build/<preset>/test-results/, where `./dev test` counts them.
function(orvgen_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "SHARDS" "LIBS")
    find_package(GTest REQUIRED)
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src
                                               ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE ORVGEN_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
    target_link_libraries(${name} PRIVATE ${arg_LIBS} GTest::gtest GTest::gtest_main)
    if(NOT arg_SHARDS)
        set(arg_SHARDS 1)
    endif()
    math(EXPR last "${arg_SHARDS} - 1")
    foreach(i RANGE ${last})
        set(test ${name})
        if(arg_SHARDS GREATER 1)
            set(test ${name}.${i})
        endif()
        add_test(NAME ${test} COMMAND ${name})
        set_tests_properties(${test} PROPERTIES ENVIRONMENT
            "GTEST_OUTPUT=xml:${PROJECT_BINARY_DIR}/test-results/${test}.xml;GTEST_TOTAL_SHARDS=${arg_SHARDS};GTEST_SHARD_INDEX=${i}")
    endforeach()
endfunction()
