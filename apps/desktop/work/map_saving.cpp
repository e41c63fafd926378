// SPDX-License-Identifier: MIT
#include "work/map_saving.h"

#include "toolkit/base/failure.h"
#include "toolkit/batch/picture_file.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/workers/run_one.h"
#include "work/sentence.h"
#include "work/show_maker.h"

#include <exception>
#include <fmt/format.h>
#include <utility>

namespace umbrix_desktop {

namespace {

/// As the command line has it.
constexpr double kMaxTexels = 268435456;

} // namespace

MapSaving::MapSaving(std::function<void(Outcome)> done) : done_(std::move(done)) {}

MapSaving::~MapSaving()
{
    if (stop_) {
        stop_->request();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
}

void MapSaving::start(Order order)
{
    if (busy_.exchange(true)) {
        return;
    }
    if (thread_.joinable()) {
        thread_.join();
    }
    stop_.emplace();
    thread_ = std::thread([this, order = std::move(order)] {
        Outcome outcome = save(order);
        busy_ = false;
        done_(std::move(outcome));
    });
}

MapSaving::Outcome MapSaving::save(Order const& order)
{
    try {
        check_map_settings(order.settings);
        toolkit::remove_leftovers_beside(order.file);
        toolkit::PictureFile file(order.source, order.file, order.overwrite);
        toolkit::MapJob job;
        job.settings = order.settings;
        job.kind = order.settings.kind;
        if (order.settings.normal_y != toolkit::kDefaults.normal_y) { // else as the picture tells
            job.normal_y = order.settings.normal_y;
        }
        job.files.max_texels = kMaxTexels;
        job.files.output.saving.depth = order.settings.save_depth;
        file.name_files(job.files);
        toolkit::Observer observer;
        toolkit::run_one(job, observer, *stop_);
        stop_->check();
        file.complete();
        return {order.file, ""};
    } catch (toolkit::Stopped const&) {
        return {order.file, fmt::format("{} was not written: the work was stopped", order.file)};
    } catch (toolkit::Failure const& failure) {
        return {order.file, sentence_of(failure, order.source)};
    } catch (std::exception const& error) {
        return {order.file, fmt::format("{}: {}", order.file, error.what())};
    }
}

} // namespace umbrix_desktop
