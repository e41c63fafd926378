// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/fault.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace umbrixlib::toolkit {

/// Why work ends without a result: what() is wrong with the subject, "brick.png": "it is damaged". Texts may
/// hold file names, so they may have line breaks and need not be UTF-8.
struct Failure : std::runtime_error {
    Failure(Fault fault_, std::string subject_, std::string const& what_, std::string remedy_ = {})
        : std::runtime_error(what_), fault(fault_), subject(std::move(subject_)), remedy(std::move(remedy_))
    {
    }

    Fault fault;
    std::string subject; ///< The file at fault, or the part of the system. Empty: the file at work.
    std::string remedy;  ///< What helps, where that depends on data: "give 0 to 10". Else empty.
};

} // namespace umbrixlib::toolkit
