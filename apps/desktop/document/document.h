// SPDX-License-Identifier: MIT
#pragma once

#include "document/history.h"
#include "document/state.h"

#include <functional>
#include <string>
#include <vector>

namespace umbrix_desktop {

/// A state, how it came about, and who is told when it changes. For one thread.
class Document {
public:
    /// Neither changes the document nor adds a listener.
    using Listener = std::function<void(State const& before, State const& after)>;

    State const& state() const { return history_.now().state; }

    /// Makes one step of the history that @p name tells in the menu: "Relief". Nothing if @p change leaves
    /// the state as it is. Steps of one name within a gesture() are one step.
    void edit(std::string const& name, std::function<void(State&)> const& change);

    /// A hand holds a slider from now on until end_gesture(). If it ends where it began, there is no step.
    void begin_gesture();
    void end_gesture();

    /// One step back or forth, or nothing if there is none. A gesture that is under way makes a new step
    /// then.
    void undo();
    void redo();
    History const& history() const { return history_; }

    /// Everything anew, with no history: a project was opened, or a new one begun.
    void replace(State state, std::string project_file);

    /// The state is in that file from now on.
    void set_saved(std::string project_file);

    /// "" before it was saved for the first time.
    std::string const& project_file() const { return project_file_; }

    /// Whether there is anything that no project file holds. Where one looks is no work that could be lost.
    bool is_changed() const;

    /// Called after each change of the state, of the steps or of the file, as long as the document lives.
    /// Before and after are equal unless the state changed.
    void on_change(Listener listener);

private:
    void go(void (History::*step)());
    void tell(State const& before) const;

    History history_;
    std::vector<Listener> listeners_;
    std::string project_file_;
    State saved_;
    bool in_gesture_ = false;
    bool gesture_has_step_ = false; ///< The step that is now was made in the gesture that is under way.
};

} // namespace umbrix_desktop
