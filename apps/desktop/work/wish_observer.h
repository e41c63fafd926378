// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace umbrix_desktop {

namespace toolkit = umbrixlib::toolkit;

/// What the toolkit tells of the work on one wish, which consists of pieces. For the thread of the work.
class WishObserver : public toolkit::Observer {
public:
    using Tell = std::function<void(int permille)>;

    WishObserver(std::function<bool()> stopping, Tell tell)
        : stopping_(std::move(stopping)), tell_(std::move(tell))
    {
    }

    /// What is done from now on is the piece behind @p done of @p pieces.
    void begin_piece(std::size_t done, std::size_t pieces)
    {
        done_ = done;
        pieces_ = pieces;
        stage("", 0);
    }

    /// Never goes back: each stage begins at 0 anew, and the occlusion takes by far the most of the time.
    void stage(std::string_view name, int permille) override
    {
        if (pieces_ == 0) {
            return;
        }
        int const within = std::clamp(permille, 0, 1000);
        int const share = name == "occlusion" ? 100 + within * 9 / 10 : within / 10;
        auto const all = static_cast<int>((done_ * 1000 + static_cast<std::size_t>(share)) / pieces_);
        if (all > told_) {
            told_ = all;
            tell_(all);
        }
    }

    void note(std::string const&, toolkit::Note const& note) override
    {
        bool const known = std::ranges::find(notes_, note.text) != notes_.end();
        if (!note.detail && !known) {
            notes_.push_back(note.text);
        }
    }

    bool stopping() const override { return stopping_(); }

    /// Each once, in the order in which they came.
    std::vector<std::string> const& notes() const { return notes_; }
    void forget_notes() { notes_.clear(); }

private:
    std::function<bool()> stopping_;
    Tell tell_;
    std::size_t done_ = 0;
    std::size_t pieces_ = 0;
    int told_ = -1;
    std::vector<std::string> notes_;
};

} // namespace umbrix_desktop
