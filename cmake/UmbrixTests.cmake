# SPDX-License-Identifier: MIT
# How the tests are built and made known to CTest. Each has the label fast or slow; those in which sanitizers have
# nothing of ours to watch, or nothing that other tests do not show them, have the label unwatched as well.

# umbrix_add_test(NAME SOURCES ... [LIBRARIES ...] [LABELS ...] [SLOW SUITE ...]): a GoogleTest program. CTest runs each
# of its suites in a process of its own. LABELS are those of all suites, fast by default; the suites after SLOW have the
# label slow instead.
function(umbrix_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES;LABELS;SLOW")
    if(NOT arg_LABELS)
        set(arg_LABELS fast)
    endif()
    add_executable(${name} ${arg_SOURCES})
    if(UMBRIX_SANITIZE)
        target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/sanitizer_defaults.cpp)
    endif()
    target_link_libraries(${name} PRIVATE umbrix_build_settings umbrix_test_support ${arg_LIBRARIES} GTest::gtest_main)
    # What is tested is optimised in full; the tests' own code would take longer to compile than it runs.
    target_compile_options(${name} PRIVATE ${UMBRIX_QUICK_COMPILE})
    umbrix_unity(${name})

    # The suites are known when the program is.
    set(suites ${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake)
    add_custom_command(TARGET ${name} POST_BUILD BYPRODUCTS ${suites}
        COMMAND ${CMAKE_COMMAND}
            "-DPROGRAM=$<TARGET_FILE:${name}>" "-DEMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR}"
            "-DFOLDER=${CMAKE_CURRENT_BINARY_DIR}" "-DLABELS=${arg_LABELS}" "-DSLOW=${arg_SLOW}" "-DOUTPUT=${suites}"
            -P ${PROJECT_SOURCE_DIR}/cmake/ListSuites.cmake
        VERBATIM)
    set(tests ${CMAKE_CURRENT_BINARY_DIR}/${name}_tests.cmake)
    file(WRITE ${tests}
        "if(EXISTS \"${suites}\")\n  include(\"${suites}\")\nelse()\n  add_test(${name}_is_not_built ${name}_is_not_built)\n"
        "  set_tests_properties(${name}_is_not_built PROPERTIES LABELS \"${arg_LABELS}\")\nendif()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${tests})
endfunction()

# umbrix_label_tests(LABEL ...): labels of the tests that this folder adds with add_test().
function(umbrix_label_tests)
    get_property(tests DIRECTORY PROPERTY TESTS)
    set_tests_properties(${tests} PROPERTIES LABELS "${ARGN}")
endfunction()

# umbrix_python_with(RESULT MODULE ...): an interpreter that has all modules, which the one that CMake finds may lack;
# empty if there is none.
function(umbrix_python_with result)
    find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)
    list(JOIN ARGN ", " modules)
    foreach(candidate ${Python3_EXECUTABLE} /usr/bin/python3)
        execute_process(COMMAND ${candidate} -c "import ${modules}" RESULT_VARIABLE missing OUTPUT_QUIET ERROR_QUIET)
        if(missing EQUAL 0)
            set(${result} ${candidate} PARENT_SCOPE)
            return()
        endif()
    endforeach()
    set(${result} "" PARENT_SCOPE)
endfunction()
