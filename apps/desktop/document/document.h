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
    using Listener = std::function<void(State const& before, State const& after)>;

    State const& state() const { return history_.now().state; }

    /// Makes one step of the history that @p name tells in the menu: "Relief". Nothing if @p change leaves
    /// the state as it is. Steps of one name within a gesture() are one step.
    void edit(std::string const& name, std::function<void(State&)> const& change);

    /// A hand holds a slider from now on until end_gesture().
    void begin_gesture();
    void end_gesture();

    void undo();
    void redo();
    History const& history() const { return history_; }

    /// Everything anew, with no history: a project was opened, or a new one begun.
    void replace(State state, std::string project_file);

    /// The state is in that file from now on.
    void set_saved(std::string project_file);

    /// "" before it was saved for the first time.
    std::string const& project_file() const { return project_file_; }

    /// Whether there is anything that no project file holds.
    bool is_changed() const;

    /// Called after each change of the state or of the file, as long as the document lives.
    void on_change(Listener listener);

private:
    void tell(State const& before);

    History history_;
    std::vector<Listener> listeners_;
    std::string project_file_;
    State saved_;
    bool in_gesture_ = false;
};

} // namespace umbrix_desktop
