// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>

namespace umbrixlib::test {

/// Tests of thousands of cases take every n-th of them where UMBRIX_TEST_SHARE is n.
inline std::size_t test_share()
{
    char const* const share = std::getenv("UMBRIX_TEST_SHARE");
    std::size_t const n = share == nullptr ? 1 : std::strtoul(share, nullptr, 10);
    return n == 0 ? 1 : n;
}

} // namespace umbrixlib::test
