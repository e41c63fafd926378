// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/files/opened_files.h"

#include <cstdio>
#include <filesystem>
#include <span>
#include <utility>

namespace umbrixlib::toolkit {

/// A file that an encoder writes from its start to its end. What goes wrong is kept until close().
class OutputStream {
public:
    explicit OutputStream(std::filesystem::path const& file)
        : stream_(fdopen(open_file(file, OpenFor::kWriting), "wb"))
    {
    }
    ~OutputStream() { close(); }
    OutputStream(OutputStream const&) = delete;
    OutputStream& operator=(OutputStream const&) = delete;

    /// False if it could not be written, now or before.
    bool write(std::span<unsigned char const> bytes)
    {
        good_ = good_ && stream_ != nullptr &&
                (bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), stream_) == bytes.size());
        return good_;
    }

    /// Whether all went well.
    bool close()
    {
        std::FILE* const stream = std::exchange(stream_, nullptr);
        good_ = stream != nullptr && std::fclose(stream) == 0 && good_;
        return good_;
    }

private:
    std::FILE* stream_;
    bool good_ = true;
};

} // namespace umbrixlib::toolkit
