// SPDX-License-Identifier: MIT
#pragma once

#include "document/state.h"

#include <cstddef>
#include <deque>
#include <string>

namespace umbrix_desktop {

/// A state and the name of the edit that led to it.
struct Step {
    std::string name;
    State state;
};

/// Bytes that a step takes, with what its texts and layers point to.
std::size_t bytes_of(Step const& step);

/// What was, what is and what was undone. The oldest steps go as soon as all take more than a bound, but the
/// one that is now stays.
class History {
public:
    /// @param first Where it begins; its name is nobody's.
    /// @param bound In bytes.
    explicit History(State first = {}, std::size_t bound = std::size_t{256} << 20U);

    Step const& now() const { return steps_[at_]; }

    /// Behind the step that is now; what was undone is gone.
    void push(Step step);

    /// In place of the step that is now; what was undone is gone.
    void replace(Step step);

    /// Takes the step that is now away as if it had never been, with what was undone. It is not the oldest.
    void drop();

    /// Whether the step that is now leaves the state as the one before it did.
    bool leads_nowhere() const { return can_undo() && steps_[at_].state == steps_[at_ - 1].state; }

    bool can_undo() const { return at_ > 0; }
    bool can_redo() const { return at_ + 1 < steps_.size(); }
    void undo(); ///< Nothing if there is nothing to undo.
    void redo(); ///< Nothing if there is nothing to redo.

    /// The edit that the next undo takes back, and the one that the next redo makes again. "" for none.
    std::string undo_name() const;
    std::string redo_name() const;

    /// Bytes that all steps take.
    std::size_t bytes() const { return bytes_; }

private:
    void forget_undone();
    void keep_bound();

    std::deque<Step> steps_; ///< Never empty.
    std::size_t at_ = 0;
    std::size_t bytes_ = 0;
    std::size_t bound_;
};

} // namespace umbrix_desktop
