// SPDX-License-Identifier: MIT
#include "toolkit/pictures/devil/devil_reading.h"

#include "toolkit/base/give_up.h"

#include <IL/il.h>
#include <cstdio>

namespace umbrixlib::toolkit {

namespace {

/// Reads that gave nothing in one file. Sound loaders make a few, at the end.
constexpr int kMostVainReads = 1 << 16;
int vain_reads = 0;

void note(bool got_something)
{
    if (!got_something && ++vain_reads > kMostVainReads) {
        give_up({Fault::kDamagedPicture, "", "it is damaged: it ends too early"});
    }
}

ILHANDLE ILAPIENTRY open_file(ILconst_string name)
{
    vain_reads = 0;
    return std::fopen(name, "rbe");
}

void ILAPIENTRY close_file(ILHANDLE file)
{
    std::fclose(static_cast<std::FILE*>(file));
}

ILboolean ILAPIENTRY is_at_end(ILHANDLE file)
{
    return std::feof(static_cast<std::FILE*>(file)) != 0;
}

ILint ILAPIENTRY get_byte(ILHANDLE file)
{
    int const byte = std::fgetc(static_cast<std::FILE*>(file));
    note(byte != EOF);
    return byte;
}

ILint ILAPIENTRY get_bytes(void* bytes, ILuint size, ILuint count, ILHANDLE file)
{
    if (size == 0 || count == 0) {
        return 0; // with a null pointer, from some
    }
    std::size_t const got = std::fread(bytes, size, count, static_cast<std::FILE*>(file));
    note(got != 0);
    return static_cast<ILint>(got);
}

ILint ILAPIENTRY go_to(ILHANDLE file, ILint offset, ILint from)
{
    return std::fseek(static_cast<std::FILE*>(file), offset, from);
}

ILint ILAPIENTRY place_in(ILHANDLE file)
{
    return static_cast<ILint>(std::ftell(static_cast<std::FILE*>(file)));
}

} // namespace

void watch_devil_reading()
{
    ilSetRead(open_file, close_file, is_at_end, get_byte, get_bytes, go_to, place_in);
}

} // namespace umbrixlib::toolkit
