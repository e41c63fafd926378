// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/source_file.h"

#include <OpenEXR/openexr.h>

namespace umbrixlib::toolkit {

/// An OpenEXR file of one part with flat texels, open in OpenEXRCore, which reads it from memory. Nothing is
/// told on the terminal.
class ExrFile {
public:
    /// Refuses by name what has deep texels or several parts: OpenEXRCore does not see such a file.
    explicit ExrFile(SourceFile& source);
    ~ExrFile();
    ExrFile(ExrFile const&) = delete;
    ExrFile& operator=(ExrFile const&) = delete;

    exr_context_t get() const { return context_; }

    /// Refuses the file as damaged if a call did not give @p result 0. std::bad_alloc if memory was missing.
    void check(exr_result_t result) const;

private:
    static std::int64_t read(exr_const_context_t, void* self, void* to, std::uint64_t size,
                             std::uint64_t offset, exr_stream_error_func_ptr_t);
    static std::int64_t size(exr_const_context_t, void* self);

    SourceFile& source_;
    std::span<std::uint8_t const> content_;
    exr_context_t context_ = nullptr;
};

} // namespace umbrixlib::toolkit
