// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/exit_codes.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace umbrix_cli {

/// Why a command ends without a result, in the words of the command line.
struct Complaint : std::runtime_error {
    Complaint(std::string subject_, std::string const& what_, std::string advice_,
              ExitCode code_ = kInputFailed)
        : std::runtime_error(what_), subject(std::move(subject_)), advice(std::move(advice_)), code(code_)
    {
    }

    std::string subject; ///< The file or the option at fault.
    std::string advice;  ///< What the user can do about it.
    ExitCode code;
};

/// A command line that asks for something that no file could make possible.
struct UsageError : Complaint {
    UsageError(std::string subject_, std::string const& what_, std::string advice_)
        : Complaint(std::move(subject_), what_, std::move(advice_), kWrongUsage)
    {
    }
};

/// One line without its end: `umbrix map: error: <subject>: <what>; <advice>`.
std::string error_line(Complaint const& complaint, std::string const& command);

} // namespace umbrix_cli
