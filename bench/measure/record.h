// SPDX-License-Identifier: MIT
#pragma once

#include <iostream>
#include <nlohmann/json.hpp>

namespace umbrixlib::bench {

using Record = nlohmann::ordered_json;

/// One line of standard output, which bench/tables/ reads.
inline void print(Record const& record)
{
    std::cout << record.dump() << std::endl;
}

} // namespace umbrixlib::bench
