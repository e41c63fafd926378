// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/exit_codes.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace umbrixlib::toolkit {

/// Why a command stops: shown as one sentence, `umbrix map: error: <subject>: <what>; <advice>`.
struct Failure : std::runtime_error {
    Failure(std::string subject_, std::string const& what_, std::string advice_,
            ExitCode code_ = kInputFailed)
        : std::runtime_error(what_), subject(std::move(subject_)), advice(std::move(advice_)), code(code_)
    {
    }

    std::string subject; ///< The file or the option at fault.
    std::string advice;  ///< What the user can do about it.
    ExitCode code;
};

} // namespace umbrixlib::toolkit
