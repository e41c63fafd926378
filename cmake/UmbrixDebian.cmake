# SPDX-License-Identifier: MIT
# Debian packages by CPack: the libraries, what one needs to build against them, the command line, the desktop program.
set(abi ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME umbrixlib)
set(CPACK_PACKAGE_CONTACT "The UmbrixLib developers <umbrixlib@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL library development tools)
if(TARGET umbrix_c)
    list(APPEND CPACK_COMPONENTS_ALL debian_python)
endif()
if(TARGET umbrix_desktop)
    list(APPEND CPACK_COMPONENTS_ALL desktop)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
# The libraries find each other in the tree they were built in; dpkg-shlibdeps reads what they need from outside.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/velloric ${PROJECT_BINARY_DIR}/coralith ${PROJECT_BINARY_DIR}/toolkit
    ${PROJECT_BINARY_DIR}/capi)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libumbrix${abi})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "Tangent-space normal maps and Umbrix maps, shared libraries")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libumbrix-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libumbrix${abi} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Tangent-space normal maps and Umbrix maps, headers and package files")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME umbrix)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libumbrix${abi} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "Tangent-space normal maps and Umbrix maps, command line")

# The icon is drawn by a plugin, which no program is linked with.
set(CPACK_DEBIAN_DESKTOP_PACKAGE_NAME umbrix-desktop)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_DEPENDS "libumbrix${abi} (= ${PROJECT_VERSION}), libqt6svg6")
set(CPACK_DEBIAN_DESKTOP_DESCRIPTION "Tangent-space normal maps and Umbrix maps, desktop program")

set(CPACK_DEBIAN_DEBIAN_PYTHON_PACKAGE_NAME python3-umbrix)
set(CPACK_DEBIAN_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DEBIAN_PYTHON_PACKAGE_DEPENDS "libumbrix${abi} (= ${PROJECT_VERSION}), python3, python3-numpy")
set(CPACK_DEBIAN_DEBIAN_PYTHON_DESCRIPTION "Tangent-space normal maps and Umbrix maps, for Python and NumPy")

include(CPack)
