// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace umbrix_cli {

/// Shows how far a run is, on standard error.
class ProgressDisplay {
public:
    enum class Style {
        kAuto,  ///< A bar on a terminal, lines elsewhere.
        kBar,   ///< One line that is drawn over.
        kLines, ///< A line for each stage and each further tenth of it.
        kNone,
    };

    explicit ProgressDisplay(Style style);
    ~ProgressDisplay() { clear(); }
    ProgressDisplay(ProgressDisplay const&) = delete;
    ProgressDisplay& operator=(ProgressDisplay const&) = delete;

    bool is_bar() const { return style_ == Style::kBar; }

    void show(std::string const& stage, int permille);

    /// Takes the bar off the terminal, so that something else can be written there.
    void clear();

private:
    Style style_;
    std::string stage_;
    int tenth_ = -1;
    bool drawn_ = false;
};

} // namespace umbrix_cli
