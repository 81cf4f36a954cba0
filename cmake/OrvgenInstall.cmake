# SPDX-License-Identifier: MIT
# Installed: the library in both builds (component `library`); archives, headers, CMake package and pkg-config file
# (`development`); and only where it is named, `--component core`, the core library's stand-in.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

install(TARGETS orvgen orvgen_static orvgen_batch orvgen_batch_static EXPORT orvgen
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# Where the loader looks first on processors of that level. It is a file for the loader alone: nobody links it.
if(ORVGEN_V3)
    install(TARGETS orvgen_v3
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/glibc-hwcaps/x86-64-v3 COMPONENT library NAMELINK_SKIP)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/include/orvgen.h ${PROJECT_SOURCE_DIR}/include/orvgen_batch.h
              ${PROJECT_SOURCE_DIR}/include/orvgen.hpp ${PROJECT_SOURCE_DIR}/include/orvgen_batch.hpp
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orvgen DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT library)
if(TARGET orvgen_bill)
    install(FILES ${ORVGEN_BILL} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT library)
endif()
if(TARGET orvgen_manuals)
    install(DIRECTORY ${ORVGEN_MANUALS}/ DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT development)
endif()

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/orvgen)
install(EXPORT orvgen NAMESPACE orvgen:: FILE orvgenConfig.cmake DESTINATION ${package} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orvgenConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orvgenConfigVersion.cmake DESTINATION ${package} COMPONENT development)

# The prefix of the pkg-config file is found from its own place, so that an installed tree can be moved.
file(RELATIVE_PATH up "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" up "${up}")
# Below the prefix, unless they were given as absolute paths, which APPEND lets stand alone.
set(pc_libdir "\${prefix}")
cmake_path(APPEND pc_libdir "${CMAKE_INSTALL_LIBDIR}")
set(pc_includedir "\${prefix}")
cmake_path(APPEND pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
foreach(name orvgen orvgen-batch)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/orvgen.pc ${PROJECT_BINARY_DIR}/orvgen-batch.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

configure_file(${PROJECT_SOURCE_DIR}/cmake/InstallCore.cmake.in ${PROJECT_BINARY_DIR}/InstallCore.cmake.in @ONLY)
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/InstallCore-$<CONFIG>.cmake INPUT ${PROJECT_BINARY_DIR}/InstallCore.cmake.in)
install(SCRIPT ${PROJECT_BINARY_DIR}/InstallCore-$<CONFIG>.cmake COMPONENT core EXCLUDE_FROM_ALL)

if(PROJECT_IS_TOP_LEVEL)
    set(CPACK_PACKAGE_NAME orvgen)
    set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
    set(CPACK_GENERATOR TGZ)
    include(CPack)
endif()
