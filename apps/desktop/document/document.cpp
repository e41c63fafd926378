// SPDX-License-Identifier: MIT
#include "document/document.h"

#include <utility>

namespace umbrix_desktop {

void Document::edit(std::string const& name, std::function<void(State&)> const& change)
{
    State next = state();
    change(next);
    if (next == state()) {
        return;
    }
    State const before = state();
    if (gesture_has_step_ && history_.now().name == name) {
        history_.replace({name, std::move(next)});
    } else {
        history_.push({name, std::move(next)});
        gesture_has_step_ = in_gesture_;
    }
    tell(before);
}

void Document::begin_gesture()
{
    in_gesture_ = true;
    gesture_has_step_ = false;
}

void Document::end_gesture()
{
    bool const has_step = std::exchange(gesture_has_step_, false);
    in_gesture_ = false;
    if (has_step && history_.leads_nowhere()) {
        history_.drop();
        tell(state());
    }
}

void Document::undo()
{
    go(&History::undo);
}

void Document::redo()
{
    go(&History::redo);
}

void Document::go(void (History::*step)())
{
    State const before = state();
    Step const* const from = &history_.now();
    (history_.*step)();
    gesture_has_step_ = false;
    if (&history_.now() != from) {
        tell(before);
    }
}

void Document::replace(State state, std::string project_file)
{
    State const before = this->state();
    history_ = History(std::move(state));
    gesture_has_step_ = false;
    saved_ = this->state();
    project_file_ = std::move(project_file);
    tell(before);
}

void Document::set_saved(std::string project_file)
{
    saved_ = state();
    project_file_ = std::move(project_file);
    tell(state());
}

bool Document::is_changed() const
{
    State looked_at = state();
    looked_at.view = saved_.view;
    return looked_at != saved_;
}

void Document::on_change(Listener listener)
{
    listeners_.push_back(std::move(listener));
}

void Document::tell(State const& before) const
{
    for (Listener const& listener : listeners_) {
        listener(before, state());
    }
}

} // namespace umbrix_desktop
