// SPDX-License-Identifier: MIT
#pragma once

#include <sys/resource.h>
#include <sys/sysinfo.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define UMBRIX_ADDRESS_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define UMBRIX_ADDRESS_SANITIZER
#endif

namespace umbrixlib::toolkit {

/// Bytes of memory that the machine has, swap included.
inline double machine_memory()
{
    struct sysinfo machine {};
    sysinfo(&machine);
    return (static_cast<double>(machine.totalram) + static_cast<double>(machine.totalswap)) *
           static_cast<double>(machine.mem_unit);
}

/// While it lives, the process gets no more than @p bytes of memory, so that a small file that unpacks into a
/// giant fails to load instead of filling the machine. Sanitizers, which reserve terabytes, go without.
class AddressSpaceLimit {
public:
    explicit AddressSpaceLimit(double bytes)
    {
        getrlimit(RLIMIT_AS, &before_);
        rlimit limited = before_;
        if (bytes < static_cast<double>(before_.rlim_cur)) {
            limited.rlim_cur = static_cast<rlim_t>(bytes);
        }
        set(limited);
    }
    ~AddressSpaceLimit() { set(before_); }
    AddressSpaceLimit(AddressSpaceLimit const&) = delete;
    AddressSpaceLimit& operator=(AddressSpaceLimit const&) = delete;

private:
    static void set([[maybe_unused]] rlimit const& limit)
    {
#if !defined(UMBRIX_ADDRESS_SANITIZER)
        setrlimit(RLIMIT_AS, &limit);
#endif
    }

    rlimit before_{};
};

} // namespace umbrixlib::toolkit
