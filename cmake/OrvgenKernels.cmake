# SPDX-License-Identifier: MIT
# Kernels made at build time: the kernel compiler writes one assembly file for each member of a family.

# The presets of one compiler share a folder of kernels: what one has written the others find made (kernelgen compares a
# key). Another compiler evaluates operands in another order, which numbers the values of a flow, and with them the
# candidate orders of its instructions, in another way: the same results by other code.
set(ORVGEN_KERNEL_DIR ${PROJECT_BINARY_DIR}/kernels CACHE PATH "Where the assembly of the kernels is written")

# orvgen_assemble_kernels(OUT GENERATOR name... [TARGET target]): the assembly files that `GENERATOR emit name file`
# writes, those for another target in a folder of its name.
function(orvgen_assemble_kernels out generator)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "TARGET" "")
    set(files "")
    cmake_path(APPEND ORVGEN_KERNEL_DIR "${arg_TARGET}" OUTPUT_VARIABLE folder)
    file(MAKE_DIRECTORY ${folder})
    foreach(kernel IN LISTS arg_UNPARSED_ARGUMENTS)
        cmake_path(APPEND folder ${kernel}.s OUTPUT_VARIABLE file)
        add_custom_command(OUTPUT ${file} COMMAND ${generator} emit ${kernel} ${file} ${arg_TARGET} DEPENDS ${generator}
                           COMMENT "Generating ${kernel} ${arg_TARGET}" VERBATIM)
        list(APPEND files ${file})
    endforeach()
    set(${out} ${files} PARENT_SCOPE)
endfunction()

# orvgen_assemble_wide_kernels(OUT FORM TARGETS name...): the assembly files of the kernels for batches in a form, Batch
# (one transform a lane), Pairs (the same on interleaved elements) or Rows (one in 16 bytes of a vector), for the instruction
# sets in the list TARGETS (avx2, avx512).
function(orvgen_assemble_wide_kernels out form targets)
    set(files "")
    string(TOLOWER ${form} command)
    foreach(kernel IN LISTS ARGN)
        string(REGEX REPLACE "^orvg" "${ORVGEN_KERNEL_DIR}/owng${form}" stem ${kernel})
        list(TRANSFORM targets REPLACE "(.+)" "${stem}_\\1.s" OUTPUT_VARIABLE written)
        add_custom_command(OUTPUT ${written}
                           COMMAND orvgen_kernelgen_program ${command} ${kernel} ${ORVGEN_KERNEL_DIR} ${targets}
                           DEPENDS orvgen_kernelgen_program
                           COMMENT "Generating ${kernel} for batches, form ${form}" VERBATIM)
        list(APPEND files ${written})
    endforeach()
    set(${out} ${files} PARENT_SCOPE)
endfunction()

# orvgen_add_kernels(FAMILY ELEMENT): all members of a family that the public header lists, as a part of the product and
# of its second build.
function(orvgen_add_kernels family element)
    orvgen_family_members(${family} ${element} members)
    list(TRANSFORM members REPLACE "(.+)" "orvg${family}_\\1_${element}" OUTPUT_VARIABLE names)
    orvgen_assemble_kernels(files orvgen_kernelgen_program ${names})
    orvgen_add_part(kernels_${family}_${element} ORVGEN_OBJECTS ${files})
    if(ORVGEN_V3)
        orvgen_assemble_kernels(files orvgen_kernelgen_program ${names} TARGET x86-64-v3)
        orvgen_add_part(kernels_${family}_${element}_v3 ORVGEN_V3_OBJECTS ${files})
    endif()
endfunction()
