# SPDX-License-Identifier: MIT
# Writes the suites of a GoogleTest program as tests for CTest into the file OUTPUT. PROGRAM is run by EMULATOR, if that
# is not empty, in FOLDER. LABELS, SLOW: see umbrix_add_test().
cmake_minimum_required(VERSION 3.25)
execute_process(
    COMMAND ${EMULATOR} ${PROGRAM} --gtest_list_tests
    WORKING_DIRECTORY ${FOLDER}
    OUTPUT_VARIABLE listing
    RESULT_VARIABLE failure
    TIMEOUT 60)
if(failure)
    file(REMOVE ${OUTPUT})
    message(FATAL_ERROR "${PROGRAM} does not list its tests (${failure}):\n${listing}")
endif()

# A suite stands at the start of a line and ends with a dot; its tests are indented.
string(REGEX MATCHALL "\n[A-Za-z0-9_/]+\\." suites "\n${listing}")
if(NOT suites)
    message(FATAL_ERROR "${PROGRAM} has no tests")
endif()
set(emulator "")
foreach(word IN LISTS EMULATOR)
    string(APPEND emulator " \"${word}\"")
endforeach()
set(tests "")
foreach(suite IN LISTS suites)
    string(REGEX REPLACE "[\n.]" "" suite "${suite}")
    set(labels "${LABELS}")
    if(suite IN_LIST SLOW)
        list(REMOVE_ITEM SLOW ${suite})
        set(labels slow)
    endif()
    string(APPEND tests
        "add_test(\"${suite}\"${emulator} \"${PROGRAM}\" \"--gtest_filter=${suite}.*\")\n"
        "set_tests_properties(\"${suite}\" PROPERTIES WORKING_DIRECTORY \"${FOLDER}\" LABELS \"${labels}\" TIMEOUT 900\n"
        # A thread that spins takes the time of the tests beside it.
        "    ENVIRONMENT OMP_WAIT_POLICY=passive)\n")
endforeach()
if(SLOW)
    message(FATAL_ERROR "${PROGRAM} has no suites ${SLOW}")
endif()
file(WRITE ${OUTPUT} "${tests}")
