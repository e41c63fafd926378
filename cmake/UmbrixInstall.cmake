# SPDX-License-Identifier: MIT
# What users of the targets get, and `cmake --install`: public headers, libraries, a CMake package, a pkg-config file.
include(CMakePackageConfigHelpers)

option(UMBRIX_INSTALL "Install the libraries, their headers and package files" ${PROJECT_IS_TOP_LEVEL})

# umbrixlib.h declares the functions of the companions too, so whoever links umbrix may call them.
target_link_libraries(umbrix INTERFACE velloric coralith)

if(NOT UMBRIX_INSTALL)
    return()
endif()

# umbrix_public_headers(RESULT): the umbrella header and all that it includes, directly or through others, as they are
# included: those of common/ lie beside src/, the others in it.
function(umbrix_public_headers result)
    set(pending umbrixlib.h)
    set(found "")
    while(pending)
        list(POP_FRONT pending header)
        list(APPEND found ${header})
        set(root ${PROJECT_SOURCE_DIR}/src)
        if(header MATCHES "^common/")
            set(root ${PROJECT_SOURCE_DIR})
        endif()
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${root}/${header})
        file(STRINGS ${root}/${header} includes REGEX "^#include \"")
        list(TRANSFORM includes REPLACE "^#include \"([^\"]+)\".*" "\\1")
        list(REMOVE_ITEM includes ${found} ${pending})
        list(APPEND pending ${includes})
    endwhile()
    set(private ${found})
    list(FILTER private INCLUDE REGEX "(_internal|-inl|/platform[^/]*)\\.h$")
    if(private)
        message(FATAL_ERROR "umbrixlib.h reaches private headers: ${private}")
    endif()
    set(${result} ${found} PARENT_SCOPE)
endfunction()

set(include_dir ${CMAKE_INSTALL_INCLUDEDIR}/umbrixlib)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/UmbrixLib)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

umbrix_public_headers(public_headers)
set(common_headers ${public_headers})
list(FILTER common_headers INCLUDE REGEX "^common/")
list(FILTER public_headers EXCLUDE REGEX "^common/")
list(TRANSFORM public_headers PREPEND ${PROJECT_SOURCE_DIR}/src/)
target_sources(umbrix PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src FILES ${public_headers})

set(installed umbrix velloric coralith)
if(TARGET toolkit)
    list(APPEND installed toolkit umbrix_c)
endif()
install(TARGETS ${installed} EXPORT UmbrixLibTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
    FILE_SET HEADERS DESTINATION ${include_dir} COMPONENT development)
# No file set: the folder above common/ holds that of the other headers, which CMake refuses.
install(FILES ${common_headers} DESTINATION ${include_dir}/common COMPONENT development)
if(TARGET toolkit)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/toolkit DESTINATION ${include_dir} COMPONENT development
        FILES_MATCHING PATTERN "*.h" PATTERN "*_internal.h" EXCLUDE)
endif()
if(TARGET coralith_cuda) # opened at run time by the library beside it
    install(TARGETS coralith_cuda LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)
endif()
if(TARGET umbrix_c) # taken into the package for Python by python/setup.py
    install(TARGETS umbrix_c velloric coralith
        LIBRARY DESTINATION umbrix/_library COMPONENT python EXCLUDE_FROM_ALL NAMELINK_SKIP
        RUNTIME DESTINATION umbrix/_library COMPONENT python EXCLUDE_FROM_ALL)
    # A package of a system has the libraries beside it, where the dynamic linker finds them.
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/python/umbrix DESTINATION lib/python3/dist-packages
        COMPONENT debian_python EXCLUDE_FROM_ALL FILES_MATCHING PATTERN "*.py" PATTERN "py.typed")
endif()
install(EXPORT UmbrixLibTargets NAMESPACE UmbrixLib:: DESTINATION ${package_dir} COMPONENT development)

configure_package_config_file(cmake/UmbrixLibConfig.cmake.in UmbrixLibConfig.cmake INSTALL_DESTINATION ${package_dir})
# Before 1.0 each minor version may break what was there: 0.1 does not serve a user of 0.2, nor the reverse.
set(compatibility SameMajorVersion)
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(compatibility SameMinorVersion)
endif()
write_basic_package_version_file(UmbrixLibConfigVersion.cmake COMPATIBILITY ${compatibility})
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/UmbrixLibConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/UmbrixLibConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# The prefix is told from the place of the file, so an installed tree may be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
    OUTPUT_VARIABLE prefix_from_pkgconfig)
configure_file(cmake/umbrix.pc.in umbrix.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/umbrix.pc
    DESTINATION ${pkgconfig_dir} COMPONENT development)
if(TARGET umbrix_c)
    configure_file(cmake/umbrix-c.pc.in umbrix-c.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/umbrix-c.pc DESTINATION ${pkgconfig_dir} COMPONENT development)
endif()

# What an engine lights maps with, without that of which it is made.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/shaders DESTINATION ${CMAKE_INSTALL_DATADIR}/umbrixlib
    COMPONENT tools PATTERN source EXCLUDE)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT library)
include(UmbrixDebian)
