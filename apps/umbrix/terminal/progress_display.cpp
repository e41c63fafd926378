// SPDX-License-Identifier: MIT
#include "terminal/progress_display.h"

#include "terminal/put_text.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <unistd.h>

namespace umbrix_cli {

namespace {

constexpr int kBarWidth = 30;
constexpr char const* kClearLine = "\r\033[K";

} // namespace

ProgressDisplay::ProgressDisplay(Style style) : style_(style)
{
    if (style_ == Style::kAuto) {
        style_ = isatty(STDERR_FILENO) != 0 ? Style::kBar : Style::kLines;
    }
}

void ProgressDisplay::show(std::string const& stage, int permille)
{
    int const share = std::clamp(permille, 0, 1000);
    if (style_ == Style::kBar) {
        auto const filled = static_cast<std::size_t>(kBarWidth * share / 1000);
        std::string bar(kBarWidth, '.');
        std::fill_n(bar.begin(), filled, '#');
        put_text(stderr, fmt::format("{}[{}] {:3}% {}", kClearLine, bar, share / 10, stage));
        drawn_ = true;
    } else if (style_ == Style::kLines && (stage != stage_ || share / 100 > tenth_)) {
        put_text(stderr,
                 fmt::format("{}{}\n", stage, share < 100 ? "" : fmt::format(" {}%", share / 100 * 10)));
        stage_ = stage;
        tenth_ = share / 100;
    }
}

void ProgressDisplay::clear()
{
    if (drawn_) {
        put_text(stderr, kClearLine);
        drawn_ = false;
    }
}

} // namespace umbrix_cli
