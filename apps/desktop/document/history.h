// SPDX-License-Identifier: MIT
#pragma once

#include "document/state.h"

#include <cstddef>
#include <string>
#include <vector>

namespace umbrix_desktop {

/// A state and the name of the edit that led to it.
struct Step {
    std::string name;
    State state;
};

/// What was, what is and what was undone. The oldest steps go as soon as all take more than a bound.
class History {
public:
    explicit History(std::size_t bound = std::size_t{256} << 20U);

    Step const& now() const { return steps_[at_]; }

    /// Behind the step that is now; what was undone is gone.
    void push(Step step);

    /// In place of the step that is now; what was undone is gone.
    void replace(Step step);

    bool can_undo() const { return at_ > 0; }
    bool can_redo() const { return at_ + 1 < steps_.size(); }
    void undo();
    void redo();

    /// The edit that the next undo takes back, and the one that the next redo makes again. "" for none.
    std::string undo_name() const;
    std::string redo_name() const;

    /// Bytes that all steps take.
    std::size_t bytes() const { return bytes_; }

private:
    std::vector<Step> steps_;
    std::size_t at_ = 0;
    std::size_t bytes_ = 0;
    std::size_t bound_;
};

} // namespace umbrix_desktop
