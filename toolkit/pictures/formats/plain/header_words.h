// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/source_file.h"

#include <string>

namespace umbrixlib::toolkit {

/// The words of a header, and of pictures that are text, with blanks between them and comments from # to the
/// end of a line.
class HeaderWords {
public:
    explicit HeaderWords(SourceFile& source) : source_(source) {}

    /// The next byte that is neither blank nor in a comment.
    int next_letter();

    /// Takes the one blank behind it, too.
    std::string next();

    /// A whole number that is not negative.
    int next_number();

    static bool is_space(int byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

private:
    void skip_line();

    SourceFile& source_;
};

} // namespace umbrixlib::toolkit
