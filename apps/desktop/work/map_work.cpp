// SPDX-License-Identifier: MIT
#include "work/map_work.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/stop.h"
#include "work/decoded_sources.h"
#include "work/made_shows.h"
#include "work/previewer.h"
#include "work/sentence.h"
#include "work/wish_observer.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <fmt/format.h>
#include <iterator>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

namespace umbrix_desktop {

namespace {

using Shows = std::array<bool, kShows>;

/// In the order in which the whole pictures are made: the quick ones first.
constexpr Show kOrder[] = {Show::kSource, Show::kNormals, Show::kMap, Show::kRelit, Show::kOcclusion};

/// Of a picture with more texels, what is not wanted is not kept.
constexpr std::size_t kLargePicture = std::size_t{1} << 24U;

/// The sentence for what was thrown.
std::string sentence_of_current(std::string const& source)
{
    try {
        throw;
    } catch (toolkit::Failure const& failure) {
        return sentence_of(failure, source);
    } catch (std::bad_alloc const&) {
        return fmt::format("{}: there is not enough memory to work on it; make the picture smaller", source);
    } catch (std::exception const& error) {
        return fmt::format("{}: {}", source, error.what());
    }
}

} // namespace

/// The thread of the work and what it shares with those who want something.
struct MapWork::Inside {
    Inside(Post post_, Progress progress_)
        : post(std::move(post_)), progress(std::move(progress_)), thread([this] { serve(); })
    {
    }

    ~Inside()
    {
        {
            std::scoped_lock const lock(telling, mutex);
            ending = true;
            ++newest;
            stop.request();
        }
        wake.notify_one();
        thread.join();
    }

    bool is_old(std::uint64_t number) const { return newest.load() != number; }

    void serve();
    void work(std::uint64_t number, Wish const& wish);
    void make_shows(Made& made, Wish const& wish, WishObserver& observer);
    Shows missing(Shows const& shows) const;
    void make_preview(Made const& made, MadeShows::Basis const& basis, Shows const& shows,
                      toolkit::Observer& observer);
    void make_whole(Made& made, MadeShows::Basis const& basis, Shows const& shows, WishObserver& observer);
    void tell(Made const& made);

    Post post;
    Progress progress;
    /// Held while somebody is told something, so that an old wish tells nothing after a new one is uttered.
    std::recursive_mutex telling;
    std::mutex mutex; ///< Of the next six.
    std::condition_variable wake;
    std::atomic<std::uint64_t> newest = 0; ///< Read without the mutex, too.
    Wish newest_wish;
    std::uint64_t begun = 0;
    bool ending = false;
    bool forget = false;
    toolkit::StopSource stop;

    // Of the thread alone.
    DecodedSources sources;
    MadeShows whole;
    Previewer previewer;

    std::thread thread; ///< The last one: it uses all the others.
};

void MapWork::Inside::serve()
{
    for (;;) {
        Wish wish;
        std::uint64_t number = 0;
        {
            std::unique_lock lock(mutex);
            wake.wait(lock, [this] { return ending || begun != newest; });
            if (ending) {
                return;
            }
            wish = newest_wish;
            number = begun = newest;
            stop.take();
            if (std::exchange(forget, false)) {
                sources.forget();
            }
        }
        try {
            work(number, wish);
        } catch (toolkit::Stopped const&) { // there is a newer wish
        }
    }
}

void MapWork::Inside::tell(Made const& made)
{
    auto told = std::make_shared<Made const>(made);
    std::scoped_lock const lock(telling);
    if (is_old(made.wish)) {
        throw toolkit::Stopped();
    }
    post(std::move(told));
}

void MapWork::Inside::work(std::uint64_t number, Wish const& wish)
{
    Made made;
    made.wish = number;
    WishObserver observer([this, number] { return is_old(number); },
                          [this, number](int permille) {
                              std::scoped_lock const lock(telling);
                              if (!is_old(number)) {
                                  progress(number, permille);
                              }
                          });
    try {
        sources.keep(wish.source, wish.lighting.albedo);
        if (!wish.source.empty()) {
            make_shows(made, wish, observer);
        }
    } catch (toolkit::Stopped const&) {
        throw;
    } catch (...) {
        made.failure = sentence_of_current(wish.source);
    }
    made.whole = true;
    tell(made);
}

void MapWork::Inside::make_shows(Made& made, Wish const& wish, WishObserver& observer)
{
    MadeShows::Basis basis{sources.get(wish.source, observer, stop), nullptr, wish};
    toolkit::DecodedImage const& image = *basis.source;
    made.width = image.width();
    made.height = image.height();
    made.area = {0, 0, made.width, made.height};
    made.description = fmt::format("{}, {}", image.description(), image.format());
    made.notes = image.notes();
    Shows shows = wish.shows;
    if (shows[index_of(Show::kRelit)] && !wish.lighting.albedo.empty()) {
        try {
            basis.albedo = sources.get(wish.lighting.albedo, observer, stop);
        } catch (toolkit::Failure const& failure) {
            made.failure = sentence_of(failure, wish.lighting.albedo);
            shows[index_of(Show::kRelit)] = false;
        }
    }
    previewer.keep_what_stays(basis);
    whole.keep_what_stays(basis);
    if (image.picture().texels() > kLargePicture) {
        whole.keep_only(wish.shows);
    }
    make_preview(made, basis, shows, observer);
    make_whole(made, basis, shows, observer);
}

/// Those of @p shows that take time.
Shows MapWork::Inside::missing(Shows const& shows) const
{
    Shows result{};
    for (std::size_t i = 0; i < kShows; ++i) {
        auto const show = static_cast<Show>(i);
        result[i] = shows[i] && show != Show::kSource && !whole.get(show);
    }
    return result;
}

/// Tells of small pictures of what takes long. What fails here fails with the whole, too, and is told then.
void MapWork::Inside::make_preview(Made const& made, MadeShows::Basis const& basis, Shows const& shows,
                                   toolkit::Observer& observer)
{
    Shows wanted = missing(shows);
    bool const is_small = std::max(made.width, made.height) <= kPreviewSide;
    if (is_small || std::ranges::count(wanted, true) == 0) {
        return;
    }
    wanted[index_of(Show::kSource)] = shows[index_of(Show::kSource)];
    Made preview = made;
    try {
        Previewer::Preview const small = previewer.make(basis, wanted, observer);
        preview.area = small.area;
        preview.pictures = small.pictures;
    } catch (toolkit::Failure const&) {
        return;
    }
    tell(preview);
}

void MapWork::Inside::make_whole(Made& made, MadeShows::Basis const& basis, Shows const& shows,
                                 WishObserver& observer)
{
    Shows const wanted = missing(shows);
    auto const pieces = static_cast<std::size_t>(std::ranges::count(wanted, true));
    std::size_t done = 0;
    std::vector<std::string> const of_file = made.notes;
    observer.forget_notes(); // of the preview
    for (Show const show : kOrder) {
        std::size_t const i = index_of(show);
        if (!shows[i]) {
            continue;
        }
        if (wanted[i]) {
            observer.begin_piece(done, pieces);
            ++done;
        }
        try {
            made.pictures[i] = whole.make(show, basis, observer);
        } catch (toolkit::Stopped const&) {
            throw;
        } catch (...) {
            made.failure = made.failure.empty() ? sentence_of_current(basis.wish.source) : made.failure;
        }
        made.notes = of_file;
        std::ranges::copy_if(observer.notes(), std::back_inserter(made.notes), [&](std::string const& note) {
            return std::ranges::find(of_file, note) == of_file.end();
        });
        if (wanted[i] && done < pieces) {
            tell(made);
        }
    }
}

MapWork::MapWork(Post post, Progress progress)
    : inside_(std::make_unique<Inside>(std::move(post), std::move(progress)))
{
}

MapWork::~MapWork() = default;

std::uint64_t MapWork::want(Wish wish)
{
    std::uint64_t number = 0;
    {
        std::scoped_lock const lock(inside_->telling, inside_->mutex);
        inside_->newest_wish = std::move(wish);
        number = ++inside_->newest;
        inside_->stop.request();
    }
    inside_->wake.notify_one();
    return number;
}

void MapWork::forget_source()
{
    std::scoped_lock const lock(inside_->mutex);
    inside_->forget = true;
}

} // namespace umbrix_desktop
