# What holds for every target: languages, output folders, warnings, options.

option(ORVGEN_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(ORVGEN_BENCH "Build the benchmarks" OFF)
option(ORVGEN_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(ORVGEN_WERROR "Treat warnings as errors" OFF)
option(ORVGEN_SANITIZE "Build everything with the address and undefined behaviour sanitizers" OFF)

set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()
# No -DNDEBUG: the kernel compiler's assertions are part of how it is checked, and the product has none.
set(CMAKE_C_FLAGS_RELEASE "-O2")
set(CMAKE_CXX_FLAGS_RELEASE "-O2")

include(GNUInstallDirs)
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
endif()
