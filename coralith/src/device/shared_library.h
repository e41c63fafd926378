// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace coralith {

/// A library opened at run time. Stays open until the process ends.
class SharedLibrary {
public:
    /// @param name A file name, which the system looks for, or a path.
    explicit SharedLibrary(std::string const& name);

    bool is_open() const { return handle_ != nullptr; }
    std::string const& fault() const { return fault_; } ///< Why it is not open.

    /// A function of the library; null if there is none.
    template <typename Function>
    Function function(char const* name) const
    {
        return reinterpret_cast<Function>(symbol(name));
    }

private:
    void* symbol(char const* name) const;

    void* handle_ = nullptr;
    std::string fault_;
};

/// The folder of the library or program that this code is in, with a separator at its end; "" if not known.
std::string own_folder();

bool file_exists(std::string const& path);

/// Number of the running process; another one in a forked child.
long process_number();

} // namespace coralith
