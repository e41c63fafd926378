// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/complaint.h"
#include "toolkit/base/failure.h"
#include "toolkit/base/note.h"
#include "toolkit_names.h"

#include <string>
#include <string_view>

namespace umbrix_cli {

/// What the command line says of a kind of fault.
struct Advice {
    Fault fault;
    std::string_view text; ///< What helps. "{}" stands for the remedy of the failure.
    ExitCode code = kInputFailed;
    std::string_view subject = ""; ///< The option at fault, where there is one.
};

Advice const& advice_on(Fault fault);

/// A failure of the toolkit in the words of the command line.
Complaint complaint_about(Failure const& failure);

/// The text of a note, with what options do about it.
std::string text_of(Note const& note);

} // namespace umbrix_cli
