// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/files/opened_files.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>

namespace umbrixlib::toolkit {

/// A file that an encoder writes in any order. What goes wrong is kept until close().
class SeekableOutput {
public:
    explicit SeekableOutput(std::filesystem::path const& file)
        : stream_(fdopen(open_file(file, OpenFor::kWriting), "w+b"))
    {
        good_ = stream_ != nullptr;
    }
    ~SeekableOutput() { close(); }
    SeekableOutput(SeekableOutput const&) = delete;
    SeekableOutput& operator=(SeekableOutput const&) = delete;

    /// Where the next byte is read or written.
    std::uint64_t place() const { return place_; }

    /// To @p offset, also behind the end.
    void go_to(std::uint64_t offset) { place_ = offset; }

    /// How many bytes the file has, up to the last that was written.
    std::uint64_t size() const { return size_; }

    bool write(void const* bytes, std::size_t size)
    {
        good_ = good_ && go() && std::fwrite(bytes, 1, size, stream_) == size;
        advance(size);
        return good_;
    }

    /// What there is, at most @p size bytes; says how much it was.
    std::size_t read(void* to, std::size_t size)
    {
        std::size_t const count = good_ && go() ? std::fread(to, 1, size, stream_) : 0;
        at_ = UINT64_MAX; // between reading and writing the stream has to be moved
        place_ += count;
        return count;
    }

    /// Whether all went well.
    bool close()
    {
        if (stream_ != nullptr) {
            good_ = std::fclose(stream_) == 0 && good_;
            stream_ = nullptr;
        }
        return good_;
    }

private:
    /// Moves the stream to the place, if it is not there.
    bool go()
    {
        if (at_ == place_) {
            return true;
        }
        at_ = place_;
        return fseeko(stream_, static_cast<off_t>(place_), SEEK_SET) == 0;
    }

    void advance(std::size_t size)
    {
        place_ += size;
        at_ = place_;
        size_ = place_ > size_ ? place_ : size_;
    }

    std::FILE* stream_;
    bool good_;
    std::uint64_t place_ = 0;
    std::uint64_t at_ = 0; ///< Where the stream is.
    std::uint64_t size_ = 0;
};

} // namespace umbrixlib::toolkit
