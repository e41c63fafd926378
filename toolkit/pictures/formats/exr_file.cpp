// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/exr_file.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace umbrixlib::toolkit {

namespace {

constexpr std::uint8_t kDeepFlag = 0x08; ///< Of the second byte of the version.
constexpr std::uint8_t kPartsFlag = 0x10;
constexpr int kMostSide = 1 << 24; ///< Above it a file is damaged; below, others look at the size.
constexpr int kMostTileSide = 65536;
constexpr std::size_t kMostMemory = std::size_t{1}
                                    << 31; ///< For one chunk or table; above it a file is damaged.

void say_nothing(exr_const_context_t, exr_result_t, char const*) {}

/// OpenEXRCore reports data that do not fit as missing memory, too: this tells which it is.
thread_local bool out_of_memory = false;

/// Zeros: what a decoder leaves out is the same in each run.
void* get_memory(std::size_t size)
{
    if (size > kMostMemory) {
        return nullptr;
    }
    void* const memory = std::calloc(1, size);
    out_of_memory = out_of_memory || (memory == nullptr && size > 0);
    return memory;
}

} // namespace

ExrFile::ExrFile(SourceFile& source) : source_(source), content_(source.content())
{
    if (content_.size() < 8) {
        source_.refuse_as_damaged();
    }
    if ((content_[5] & kDeepFlag) != 0) {
        source_.refuse("it is a deep OpenEXR picture", "save it flat");
    }
    if ((content_[5] & kPartsFlag) != 0) {
        source_.refuse("it is an OpenEXR picture of several parts", "save one of them alone");
    }
    out_of_memory = false;
    exr_context_initializer_t start = EXR_DEFAULT_CONTEXT_INITIALIZER;
    start.error_handler_fn = say_nothing;
    start.alloc_fn = get_memory;
    start.free_fn = std::free;
    start.user_data = this;
    start.read_fn = read;
    start.size_fn = size;
    start.max_image_width = kMostSide;
    start.max_image_height = kMostSide;
    start.max_tile_width = kMostTileSide;
    start.max_tile_height = kMostTileSide;
    // A file that ends early is not put together from what is there.
    start.flags = EXR_CONTEXT_FLAG_SILENT_HEADER_PARSE | EXR_CONTEXT_FLAG_DISABLE_CHUNK_RECONSTRUCTION;
    check(exr_start_read(&context_, "picture", &start));
}

ExrFile::~ExrFile()
{
    exr_finish(&context_);
}

void ExrFile::check(exr_result_t result) const
{
    if (result == EXR_ERR_SUCCESS) {
        return;
    }
    if (out_of_memory) {
        throw std::bad_alloc();
    }
    source_.refuse_as_damaged();
}

std::int64_t ExrFile::read(exr_const_context_t, void* self, void* to, std::uint64_t size,
                           std::uint64_t offset, exr_stream_error_func_ptr_t)
{
    auto const content = static_cast<ExrFile*>(self)->content_;
    if (offset >= content.size()) {
        return 0;
    }
    std::uint64_t const count = std::min<std::uint64_t>(size, content.size() - offset);
    std::memcpy(to, content.data() + offset, count);
    return static_cast<std::int64_t>(count);
}

std::int64_t ExrFile::size(exr_const_context_t, void* self)
{
    return static_cast<std::int64_t>(static_cast<ExrFile*>(self)->content_.size());
}

} // namespace umbrixlib::toolkit
