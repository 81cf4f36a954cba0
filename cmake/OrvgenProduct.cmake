# SPDX-License-Identifier: MIT
# How the product is made: every room hands in object files, one link step makes the shared library of them, and the
# same objects make the static archive.

# The C++ of the product carries arithmetic and must need neither a C++ runtime nor writable data: no exceptions, no
# type information, no guarded statics; rounding as written, no contraction, no vectors where scalars are written.
set(ORVGEN_PRODUCT_FLAGS
    -fPIC -fvisibility=hidden -fno-stack-protector
    -ffp-contract=off -fno-tree-vectorize -fno-tree-slp-vectorize
    $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>
    $<$<COMPILE_LANGUAGE:CXX>:-fno-rtti>
    $<$<COMPILE_LANGUAGE:CXX>:-fno-threadsafe-statics>
    -frounding-math)
list(TRANSFORM ORVGEN_PRODUCT_FLAGS REPLACE "^(-[^$]*)$" "$<$<COMPILE_LANGUAGE:C,CXX>:\\1>"
     OUTPUT_VARIABLE ORVGEN_PRODUCT_FLAGS)

# The second build has the same sources. It may use what its processors have, but for fused multiply-adds, which round
# once where the contract rounds twice.
set(ORVGEN_V3_FLAGS $<$<COMPILE_LANGUAGE:C,CXX>:-march=x86-64-v3> $<$<COMPILE_LANGUAGE:C,CXX>:-mno-fma>)

# orvgen_add_objects(NAME sources...): a part of the product and of its second build.
function(orvgen_add_objects name)
    orvgen_add_part(${name} ORVGEN_OBJECTS ${ARGN})
    if(ORVGEN_V3)
        orvgen_add_part(${name}_v3 ORVGEN_V3_OBJECTS ${ARGN})
        target_compile_options(orvgen_${name}_v3 PRIVATE ${ORVGEN_V3_FLAGS})
    endif()
endfunction()

# orvgen_add_part(NAME LIST sources...): a part of the build that LIST collects, as the object library orvgen_NAME (a name
# that a project which takes this one in by add_subdirectory will not have).
function(orvgen_add_part name list)
    set(target orvgen_${name})
    add_library(${target} OBJECT ${ARGN})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
    target_compile_options(${target} PRIVATE ${ORVGEN_PRODUCT_FLAGS})
    set_property(GLOBAL APPEND PROPERTY ${list} ${target})
endfunction()

# orvgen_link_product(TARGET SEARCH_PATH objects...): the shared library of these objects.
function(orvgen_link_product target search_path)
    add_library(${target} SHARED ${ARGN})
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME orvgenm7 VERSION 6.1 SOVERSION 6.1
        # The C driver: the C++ one would bring in the C++ runtime.
        LINKER_LANGUAGE C
        # The file that is tested is the one that is installed.
        BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "${search_path}"
        LINK_DEPENDS ${ORVGEN_VERSION_SCRIPT})
    target_link_options(${target} PRIVATE
        # No start files: they bring initialisers and writable data. Calls and tables of functions inside the library
        # are bound at link time; only the allocator goes through the dynamic linker.
        -nostartfiles LINKER:-Bsymbolic-functions LINKER:-z,now LINKER:-z,relro LINKER:-z,noexecstack
        LINKER:--version-script=${ORVGEN_VERSION_SCRIPT}
        # Exactly the three libraries named below, and nothing that CMake appends for C++ objects.
        LINKER:--as-needed)
    if(NOT ORVGEN_SANITIZE)
        target_link_options(${target} PRIVATE LINKER:-z,defs LINKER:-z,text)
    endif()
    # By file, not as a target: whoever links the installed product need not know the core library.
    target_link_libraries(${target} PRIVATE
        -Wl,--push-state,--no-as-needed $<BUILD_INTERFACE:$<TARGET_FILE:orvcorexwide>> m c -Wl,--pop-state)
    add_dependencies(${target} orvcorexwide)
endfunction()

# orvgen_add_product(): the targets orvgen (shared), orvgen_static (archive) and orvgen_v3 (the second build, shared),
# made of all objects handed in so far.
function(orvgen_add_product)
    get_property(rooms GLOBAL PROPERTY ORVGEN_OBJECTS)
    list(TRANSFORM rooms REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)

    # The stand-in core library lies beside the product, in the build tree as where both are installed.
    orvgen_link_product(orvgen "$ORIGIN" ${objects})
    add_library(orvgen::orvgen ALIAS orvgen)

    # In the build tree where no program finds it by itself. Installed it stands two folders below the first, and the
    # core library beside that one.
    if(ORVGEN_V3)
        get_property(parts GLOBAL PROPERTY ORVGEN_V3_OBJECTS)
        list(TRANSFORM parts REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>")
        orvgen_link_product(orvgen_v3 "$ORIGIN:$ORIGIN/../.." ${parts})
        set_target_properties(orvgen_v3 PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib-x86-64-v3)
    endif()

    # In the archive a program finds what it calls and no more: each kernel with its twin is a member. The DCT-IV is one
    # member, in which all names but the exported ones are local: some have no prefix of ours, such as EnvList_add.
    set(plans ${rooms})
    list(FILTER plans INCLUDE REGEX "^orvgen_dct4")
    list(TRANSFORM plans REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>")
    list(REMOVE_ITEM objects ${plans})
    orvgen_localize(dct4 "^orvgDCT4" plan ${plans})
    add_library(orvgen_static STATIC ${objects} ${plan} $<TARGET_OBJECTS:orvgen_core>)
    add_library(orvgen::static ALIAS orvgen_static)
    set_target_properties(orvgen_static PROPERTIES OUTPUT_NAME orvgenm7 EXPORT_NAME static LINKER_LANGUAGE C)
    target_link_libraries(orvgen_static INTERFACE m)

    foreach(library orvgen orvgen_static)
        target_include_directories(${library} INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
    endforeach()
endfunction()

# orvgen_localize(NAME REGEX OUT objects...): one object of these, in which the exported names that match stay global.
function(orvgen_localize name regex out)
    set(kept ${ORVGEN_EXPORTS})
    list(FILTER kept INCLUDE REGEX "${regex}")
    list(JOIN kept "\n" kept)
    set(list ${PROJECT_BINARY_DIR}/${name}_exports.txt)
    file(CONFIGURE OUTPUT ${list} CONTENT "${kept}\n")
    set(object ${PROJECT_BINARY_DIR}/${name}.o)
    # GNU's linker, whichever one the compiler goes with: others cannot dissolve groups.
    find_program(ORVGEN_GNU_LINKER NAMES ld.bfd ld REQUIRED)
    mark_as_advanced(ORVGEN_GNU_LINKER)
    add_custom_command(OUTPUT ${object}
        # A group would keep its name, and the linker would take one of two such groups.
        COMMAND ${ORVGEN_GNU_LINKER} -r --force-group-allocation -o ${object} ${ARGN}
        COMMAND ${CMAKE_OBJCOPY} --keep-global-symbols=${list} ${object}
        DEPENDS ${ARGN} ${list} COMMENT "Joining ${name}.o" COMMAND_EXPAND_LISTS VERBATIM)
    set_source_files_properties(${object} PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
    set(${out} ${object} PARENT_SCOPE)
endfunction()
