# SPDX-License-Identifier: MIT
# cmake -DOUTPUT=FILE -DDIALECT=FILE "-DPROGRAMS=FILE;FILE;..." -P EmbedKernels.cmake
# Writes a C++ file with the texts as arrays of bytes; some compilers limit the length of string literals. Each text
# loses its #include and #pragma once lines: the parts of a program are handed over one after the other.
function(bytes_of file result)
    file(READ ${file} text)
    string(REGEX REPLACE "#(pragma once|include \"[^\"]*\")\n" "\n" text "${text}")
    file(WRITE ${OUTPUT}.part "${text}")
    file(READ ${OUTPUT}.part hex HEX)
    file(REMOVE ${OUTPUT}.part)
    string(REGEX REPLACE "(................................)" "\\1\n" hex "${hex}")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," hex "${hex}")
    set(${result} "${hex}" PARENT_SCOPE)
endfunction()

bytes_of(${DIALECT} bytes)
set(code "// Made from the files in kernels/.\n#include \"opencl/kernel_sources.h\"\n\nnamespace coralith {\nnamespace {\n")
string(APPEND code "constexpr char kBytesOfDialect[] = {\n${bytes}};\n")
set(texts "")
foreach(program IN LISTS PROGRAMS)
    bytes_of(${program} bytes)
    get_filename_component(name ${program} NAME_WE)
    string(APPEND code "constexpr char kBytesOf_${name}[] = {\n${bytes}};\n")
    string(APPEND texts "    {kBytesOf_${name}, sizeof kBytesOf_${name}},\n")
endforeach()
string(APPEND code "} // namespace\n\nText const kDialectText = {kBytesOfDialect, sizeof kBytesOfDialect};\n")
string(APPEND code "Text const kProgramTexts[kPrograms] = {\n${texts}};\n\n} // namespace coralith\n")
file(WRITE ${OUTPUT} "${code}")
