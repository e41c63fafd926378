# SPDX-License-Identifier: MIT
# Compile settings shared by every target of the project, and the helpers that make our libraries.

add_library(umbrix_build_settings INTERFACE)
target_compile_features(umbrix_build_settings INTERFACE cxx_std_20)
target_compile_options(umbrix_build_settings INTERFACE
    # Rounding is part of the results: no fused multiply-add behind our back, on any target, tests included.
    -ffp-contract=off
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wdouble-promotion -Wundef -Wnon-virtual-dtor
    -Wno-sign-conversion # clang counts it to -Wconversion, g++ does not
    # g++ 12 takes "text" + std::string for an overlapping copy (GCC bug 105651).
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
    $<$<BOOL:${UMBRIX_WERROR}>:-Werror>)

# For sources that need no speed: tests and programs. With sanitizers -O1 takes twice as long to compile as -O0, and
# two checks a third of that; the address sanitizer sees what comes of a null pointer, too.
if(UMBRIX_SANITIZE)
    set(UMBRIX_QUICK_COMPILE -O0 -fno-sanitize=null,alignment)
else()
    set(UMBRIX_QUICK_COMPILE $<$<NOT:$<CONFIG:Debug>>:-O1>)
endif()

# Sanitizers see the whole program, so all targets are built with them.
if(UMBRIX_SANITIZE)
    add_compile_options(-fsanitize=${UMBRIX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${UMBRIX_SANITIZE} -fno-sanitize-recover=all)
endif()

# umbrix_shared_library_settings(TARGET): visibility, version numbers and link flags of a shared library of ours.
function(umbrix_shared_library_settings target)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:umbrix_build_settings>)
    set_target_properties(${target} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
        EXPORT_NAME ${target}
        INSTALL_RPATH "$ORIGIN") # the companions lie beside libumbrix, wherever the tree is put
    target_link_options(${target} PRIVATE LINKER:--exclude-libs,ALL)
    # With clang the sanitizers' runtime is in the executable alone, so libraries have undefined names then.
    if(NOT UMBRIX_SANITIZE)
        target_link_options(${target} PRIVATE LINKER:--no-undefined)
    endif()
endfunction()

# umbrix_precompile(TARGET HEADER...): headers that take long to parse are parsed once for all sources of a target.
function(umbrix_precompile target)
    if(UMBRIX_PCH)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()

# umbrix_unity(TARGET): the sources of a target in few compilations, where many read the same long headers.
function(umbrix_unity target)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ${UMBRIX_UNITY} UNITY_BUILD_BATCH_SIZE 8)
endfunction()

# umbrix_room_unity(TARGET SOURCE...): adds the sources of this folder to a target, in one compilation.
function(umbrix_room_unity target)
    target_sources(${target} PRIVATE ${ARGN})
    cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME room)
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES UNITY_GROUP ${room})
    set_target_properties(${target} PROPERTIES UNITY_BUILD ${UMBRIX_UNITY} UNITY_BUILD_MODE GROUP)
endfunction()
