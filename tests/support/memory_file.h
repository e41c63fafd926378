// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace umbrixlib::test {

/// A file that lies in memory and has a name: for tests that read very many small files.
class MemoryFile {
public:
    MemoryFile() : descriptor_(memfd_create("test", MFD_CLOEXEC))
    {
        if (descriptor_ < 0) {
            throw std::runtime_error("cannot make a file in memory");
        }
        name_ = "/proc/self/fd/" + std::to_string(descriptor_);
    }
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;
    ~MemoryFile() { close(descriptor_); }

    std::string const& name() const { return name_; }

    void set_content(void const* bytes, std::size_t size) const
    {
        auto const length = static_cast<ssize_t>(size);
        if (ftruncate(descriptor_, 0) != 0 || pwrite(descriptor_, bytes, size, 0) != length) {
            throw std::runtime_error("cannot fill a file in memory");
        }
    }

private:
    int descriptor_;
    std::string name_;
};

} // namespace umbrixlib::test
