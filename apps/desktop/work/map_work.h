// SPDX-License-Identifier: MIT
#pragma once

#include "document/state.h"
#include "toolkit/pictures/picture.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace umbrix_desktop {

/// A rectangle of texels. The first row is the top one.
struct Area {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    bool operator==(Area const&) const = default;
};

/// What is to be made.
struct Wish {
    std::string source; ///< File.
    toolkit::Settings settings = toolkit::kDefaults;
    Lighting lighting;
    std::array<bool, kShows> shows{}; ///< Which pictures are wanted, by Show.
    std::optional<Area> visible;      ///< What is seen of the picture; empty: all.
};

/// What there is of a wish up to now.
struct Made {
    std::uint64_t wish = 0; ///< Number that want() returned.
    int width = 0;          ///< Of the whole picture; 0 if there is none.
    int height = 0;
    Area area; ///< That the pictures show: a preview's, or all.
    /// By Show, with the bottom row first. Null: not wanted, failed, or as it was told last: it is made in
    /// another piece. Of `area`, but a preview of all has fewer texels than that.
    std::array<std::shared_ptr<toolkit::Picture const>, kShows> pictures;
    std::string description; ///< Of the source: "16-bit grey, PNG".
    std::string failure;     ///< One sentence if anything could not be made. Else "".
    std::vector<std::string> notes;
    bool whole = false; ///< Nothing follows.
};

/// Makes the pictures of a document on a thread of its own: a preview of at most 512 x 512 texels at once,
/// then the whole. A newer wish ends the work on an older one. Sources are decoded by worker processes, so a
/// file that crashes its decoder costs a sentence; what was decoded is kept until the file changes.
class MapWork {
public:
    /// Told of every piece of work that is done, on the thread of the work: of a preview, of the whole
    /// pictures up to now after each that took time, and in the end of all. Nothing is told of a wish after a
    /// newer one was uttered. Should not wait, as others wait for it.
    using Post = std::function<void(std::shared_ptr<Made const>)>;

    /// How far the whole is, per thousand, never back; on the thread of the work.
    using Progress = std::function<void(std::uint64_t wish, int permille)>;

    MapWork(Post post, Progress progress);

    /// Ends the work.
    ~MapWork();
    MapWork(MapWork const&) = delete;
    MapWork& operator=(MapWork const&) = delete;

    /// Returns at once; for any thread.
    std::uint64_t want(Wish wish);

    /// The source is decoded anew with the next wish: its file has changed.
    void forget_source();

private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

} // namespace umbrix_desktop
