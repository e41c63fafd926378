// SPDX-License-Identifier: MIT
#include "document/history.h"

#include <utility>

namespace umbrix_desktop {

std::size_t bytes_of(Step const& step)
{
    State const& state = step.state;
    std::size_t bytes = sizeof(Step) + step.name.capacity() + state.source.capacity() +
                        state.profile.capacity() + state.lighting.albedo.capacity() +
                        state.layers.shown.capacity() / 8;
    for (toolkit::StackLayer const& layer : state.layers.description.layers) {
        bytes += sizeof layer + layer.label.capacity() + layer.file.capacity();
    }
    return bytes;
}

History::History(State first, std::size_t bound) : bound_(bound)
{
    steps_.push_back({"", std::move(first)});
    bytes_ = bytes_of(steps_.front());
}

void History::push(Step step)
{
    forget_undone();
    bytes_ += bytes_of(step);
    steps_.push_back(std::move(step));
    ++at_;
    keep_bound();
}

void History::replace(Step step)
{
    forget_undone();
    bytes_ -= bytes_of(steps_.back());
    steps_.back() = std::move(step);
    bytes_ += bytes_of(steps_.back());
    keep_bound();
}

void History::drop()
{
    --at_;
    forget_undone();
}

void History::undo()
{
    at_ -= can_undo() ? 1U : 0U;
}

void History::redo()
{
    at_ += can_redo() ? 1U : 0U;
}

std::string History::undo_name() const
{
    return can_undo() ? steps_[at_].name : "";
}

std::string History::redo_name() const
{
    return can_redo() ? steps_[at_ + 1].name : "";
}

void History::forget_undone()
{
    while (can_redo()) {
        bytes_ -= bytes_of(steps_.back());
        steps_.pop_back();
    }
}

void History::keep_bound()
{
    while (bytes_ > bound_ && can_undo()) {
        bytes_ -= bytes_of(steps_.front());
        steps_.pop_front();
        --at_;
    }
}

} // namespace umbrix_desktop
