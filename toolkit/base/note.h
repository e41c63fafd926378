// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace umbrixlib::toolkit {

/// What a note is about, where a front end has more to say on it than its text does.
enum class NoteKind {
    /// The text is all that there is to say.
    kPlain,
    /// The graphics device is the CPU itself, so it saves no time.
    kDeviceIsCpu,
    /// A graphics device takes heights otherwise than the CPU does, and no match is asked for.
    kGraphicsHeights,
    /// A map that is made from layers has nothing of this layer's normals.
    kNormalsLeftOut,
    /// Heights of more than 8 bits are saved in 8.
    kHeightsNarrowed,
    /// Normals lean to one side all over, and heights that repeat do not.
    kLeaningNormals
};

/// Something about a file that the user ought to know, and that does not end the work.
struct Note {
    std::string text;
    NoteKind kind = NoteKind::kPlain;
    bool detail = false; ///< Only for users who want to know more.
};

} // namespace umbrixlib::toolkit
