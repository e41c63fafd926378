// SPDX-License-Identifier: MIT
#include "toolkit/pictures/devil/devil_writing.h"

#include <IL/il.h>
#include <cstdio>

namespace umbrixlib::toolkit {

namespace {

bool all_well = true;

void note(bool good)
{
    all_well = all_well && good;
}

ILHANDLE ILAPIENTRY open_file(ILconst_string name)
{
    std::FILE* const stream = std::fopen(name, "wbe");
    note(stream != nullptr);
    return stream;
}

void ILAPIENTRY close_file(ILHANDLE file)
{
    note(std::fclose(static_cast<std::FILE*>(file)) == 0);
}

ILint ILAPIENTRY put_byte(ILubyte byte, ILHANDLE file)
{
    int const put = std::fputc(byte, static_cast<std::FILE*>(file));
    note(put != EOF);
    return put;
}

ILint ILAPIENTRY go_to(ILHANDLE file, ILint offset, ILint from)
{
    int const result = std::fseek(static_cast<std::FILE*>(file), offset, from);
    note(result == 0);
    return result;
}

ILint ILAPIENTRY place_in(ILHANDLE file)
{
    return static_cast<ILint>(std::ftell(static_cast<std::FILE*>(file)));
}

ILint ILAPIENTRY put_bytes(void const* bytes, ILuint size, ILuint count, ILHANDLE file)
{
    if (size == 0 || count == 0) {
        return 0; // with a null pointer, from some
    }
    std::size_t const put = std::fwrite(bytes, size, count, static_cast<std::FILE*>(file));
    note(put == count);
    return static_cast<ILint>(put);
}

} // namespace

WatchedWriting::WatchedWriting()
{
    all_well = true;
    ilSetWrite(open_file, close_file, put_byte, go_to, place_in, put_bytes);
}

WatchedWriting::~WatchedWriting()
{
    ilResetWrite();
}

bool WatchedWriting::went_well() const
{
    return all_well;
}

} // namespace umbrixlib::toolkit
