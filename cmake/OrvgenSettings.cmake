# SPDX-License-Identifier: MIT
# What holds for every target of this project: languages, output folders, warnings, options. Everything but the options
# is set for this directory and those below it, so that a project which takes this one in keeps its own settings; and
# what it may have set for all of its targets, but would break these, is taken back.

option(ORVGEN_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(ORVGEN_BENCH "Build the benchmarks" OFF)
option(ORVGEN_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(ORVGEN_PYTHON "Build the Python package" OFF)
option(ORVGEN_INSTALL "Write install rules" ${PROJECT_IS_TOP_LEVEL})
option(ORVGEN_MAN "Write the manual pages" ${PROJECT_IS_TOP_LEVEL})
option(ORVGEN_WERROR "Treat warnings as errors" OFF)
option(ORVGEN_SANITIZE "Build everything with the address and undefined behaviour sanitizers" OFF)

# The second build, for processors of the level x86-64-v3 (AVX2): where it is installed, the loader takes it by itself.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-march=x86-64-v3 ORVGEN_COMPILER_HAS_V3)
set(v3 OFF)
if(ORVGEN_COMPILER_HAS_V3 AND ORVGEN_INSTALL)
    set(v3 ON)
endif()
option(ORVGEN_V3 "Build the product once more, for x86-64-v3" ${v3})

set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_UNITY_BUILD OFF)
set(CMAKE_INTERPROCEDURAL_OPTIMIZATION OFF)

if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
        set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
    endif()
else()
    set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
    # Without a build type a parent's sources are not optimised; these are. And rounding is never left to the compiler.
    add_compile_options($<$<AND:$<CONFIG:>,$<COMPILE_LANGUAGE:C,CXX>>:-O2>
                        $<$<COMPILE_LANGUAGE:C,CXX>:-fno-fast-math>)
endif()
# No -DNDEBUG: the kernel compiler's assertions are part of how it is checked, and the product has none.
set(CMAKE_C_FLAGS_RELEASE "-O2")
set(CMAKE_CXX_FLAGS_RELEASE "-O2")

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

add_compile_options(
    $<$<COMPILE_LANGUAGE:C,CXX>:-Wall> $<$<COMPILE_LANGUAGE:C,CXX>:-Wextra>
    $<$<COMPILE_LANGUAGE:C,CXX>:-Wpedantic> $<$<COMPILE_LANGUAGE:C,CXX>:-Wshadow>
    $<$<COMPILE_LANGUAGE:C,CXX>:-Wconversion>
    # g++ leaves this out of -Wconversion; the two compilers shall ask for the same.
    $<$<COMPILE_LANGUAGE:C,CXX>:-Wno-sign-conversion>)
# clang says of each assembled file which of the options for C it does not need.
add_compile_options($<$<AND:$<COMPILE_LANGUAGE:ASM>,$<C_COMPILER_ID:Clang>>:-Wno-unused-command-line-argument>)
if(ORVGEN_WERROR)
    add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-Werror>)
endif()
if(ORVGEN_SANITIZE)
    add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=address,undefined>
                        $<$<COMPILE_LANGUAGE:C,CXX>:-fno-sanitize-recover=undefined>
                        $<$<COMPILE_LANGUAGE:C,CXX>:-fno-omit-frame-pointer>)
    add_link_options(-fsanitize=address,undefined)
    # With its sanitizers g++ 12 finds uninitialised values in the headers of the language.
    add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-maybe-uninitialized>)
endif()
