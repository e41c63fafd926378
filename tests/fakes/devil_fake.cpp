// SPDX-License-Identifier: MIT
#include "devil_fake.h"

#include "call_log.h"

#include <IL/il.h>
#include <algorithm>

namespace umbrixlib::test {

DevilFake& DevilFake::instance()
{
    static DevilFake fake;
    return fake;
}

void DevilFake::serve(int image_width, int image_height, int image_bits)
{
    *this = {};
    width = image_width;
    height = image_height;
    bits = image_bits;
    served.resize(static_cast<std::size_t>(image_width) * static_cast<std::size_t>(image_height) * 4);
    for (std::size_t i = 0; i < served.size(); ++i) {
        served[i] = static_cast<unsigned char>(i * 7);
    }
}

namespace {

std::string hex(ILenum value)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "0x%04X", value);
    return digits;
}

int number(ILuint value)
{
    return static_cast<int>(value);
}

void record(std::string const& call)
{
    CallLog::instance().record(call);
    if (DevilFake::instance().on_call) {
        DevilFake::instance().on_call(call);
    }
}

std::size_t size_of(ILuint width, ILuint height, int channels)
{
    return static_cast<std::size_t>(width) * height * static_cast<std::size_t>(channels);
}

void store(ILuint width, ILuint height, int channels, void* data)
{
    auto const* const bytes = static_cast<unsigned char const*>(data);
    DevilFake::instance().stored.assign(bytes, bytes + size_of(width, height, channels));
}

std::string region(ILuint width, ILuint height)
{
    return std::to_string(number(width)) + "x" + std::to_string(number(height));
}

} // namespace

} // namespace umbrixlib::test

using namespace umbrixlib::test;

void ILAPIENTRY ilInit(void)
{
    record("ilInit()");
}

void ILAPIENTRY ilShutDown(void)
{
    record("ilShutDown()");
}

ILboolean ILAPIENTRY ilEnable(ILenum mode)
{
    record("ilEnable(" + hex(mode) + ")");
    return IL_TRUE;
}

void ILAPIENTRY ilSetInteger(ILenum mode, ILint value)
{
    record("ilSetInteger(" + hex(mode) + ", " + hex(static_cast<ILenum>(value)) + ")");
}

ILboolean ILAPIENTRY ilLoadImage(ILconst_string file)
{
    record("ilLoadImage(" + std::string(file) + ")");
    DevilFake& fake = DevilFake::instance();
    if (auto const found = fake.files.find(file); found != fake.files.end() && fake.load_result != 0) {
        fake.width = found->second.width;
        fake.height = found->second.height;
        fake.bits = found->second.bits;
        fake.served = found->second.bytes;
    }
    return fake.load_result;
}

ILuint ILAPIENTRY ilGenImage(void)
{
    record("ilGenImage()");
    return 7;
}

void ILAPIENTRY ilBindImage(ILuint image)
{
    record("ilBindImage(" + std::to_string(number(image)) + ")");
}

ILboolean ILAPIENTRY ilSaveImage(ILconst_string file)
{
    record("ilSaveImage(" + std::string(file) + ")");
    return DevilFake::instance().save_result;
}

ILint ILAPIENTRY ilGetInteger(ILenum mode)
{
    record("ilGetInteger(" + hex(mode) + ")");
    DevilFake const& fake = DevilFake::instance();
    return mode == IL_IMAGE_WIDTH ? fake.width : mode == IL_IMAGE_HEIGHT ? fake.height : fake.bits;
}

ILuint ILAPIENTRY ilCopyPixels(ILuint, ILuint, ILuint, ILuint width, ILuint height, ILuint, ILenum format,
                               ILenum type, void* data)
{
    record("ilCopyPixels(" + region(width, height) + ", " + hex(format) + ", " + hex(type) + ", " +
           text(data) + ")");
    if (format != IL_RGB && format != IL_RGBA) {
        return 0;
    }
    std::vector<unsigned char> const& served = DevilFake::instance().served;
    std::size_t const size = std::min(served.size(), size_of(width, height, format == IL_RGBA ? 4 : 3));
    std::copy_n(served.begin(), size, static_cast<unsigned char*>(data));
    return static_cast<ILuint>(size);
}

void ILAPIENTRY ilSetPixels(ILint, ILint, ILint, ILuint width, ILuint height, ILuint, ILenum format,
                            ILenum type, void* data)
{
    record("ilSetPixels(" + region(width, height) + ", " + hex(format) + ", " + hex(type) + ", " +
           text(data) + ")");
    store(width, height, 3, data);
}

ILboolean ILAPIENTRY ilTexImage(ILuint width, ILuint height, ILuint depth, ILubyte channels, ILenum format,
                                ILenum type, void* data)
{
    record("ilTexImage(" + region(width, height) + "x" + std::to_string(number(depth)) + ", " +
           std::to_string(channels) + ", " + hex(format) + ", " + hex(type) + ", " + text(data) + ")");
    store(width, height, channels, data);
    return IL_TRUE;
}
