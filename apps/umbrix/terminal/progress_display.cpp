// SPDX-License-Identifier: MIT
#include "terminal/progress_display.h"

#include "terminal/put_text.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace umbrix_cli {

namespace {

constexpr int kBarWidth = 30;
constexpr int kRoomForStage = 16; // before the bar grows
constexpr int kPercents = 8;      // "[", "] 100% "
constexpr char const* kClearLine = "\r\033[K";

/// Columns of the terminal on standard error; many if it does not tell.
int columns()
{
    winsize size = {};
    bool const told = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return told ? size.ws_col : 1000;
}

/// The first letters of UTF-8, each taken for one column.
std::string first_letters(std::string const& text, int count)
{
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        bool const begins = (static_cast<unsigned char>(text[end]) & 0xc0U) != 0x80U;
        if (begins && --count < 0) {
            break;
        }
    }
    return text.substr(0, end);
}

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
        // A line that wraps could not be taken off again. The last column stays free: some terminals wrap
        // there.
        int const room = columns() - 1 - kPercents;
        int const width = std::clamp(room - kRoomForStage, 0, kBarWidth);
        std::string bar(static_cast<std::size_t>(width), '.');
        std::fill_n(bar.begin(), width * share / 1000, '#');
        std::string const text =
            fmt::format("[{}] {:3}% {}", bar, share / 10, first_letters(stage, std::max(room - width, 0)));
        put_text(stderr, kClearLine + first_letters(text, columns() - 1));
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
