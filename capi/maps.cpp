// SPDX-License-Identifier: MIT
#include "capi/pictures_internal.h"
#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/tasks/makers.h"
#include "toolkit/tasks/methods/read_vectors.h"
#include "toolkit/tasks/methods/told_heights.h"

#include <optional>
#include <tuple>
#include <utility>

using namespace umbrix_capi;
using namespace umbrixlib::toolkit;

namespace {

constexpr SavedAs kFloats{SampleType::kFloat};

/// What a job calls its picture. It has no other files.
JobFiles files_of(umbrix_picture const& source)
{
    return {source.name, {}, 0.0};
}

/// What the settings ask for or, where they do not, what the picture is known to be.
std::optional<Kind> kind_of(umbrix_picture const& source, Settings const& settings)
{
    if (settings.kind) {
        return settings.kind;
    }
    switch (known_kind(source)) {
    case PictureKind::kHeights:
        return Kind::kHeightMap;
    case PictureKind::kNormals:
        return Kind::kNormalMap;
    default:
        return std::nullopt;
    }
}

int channels_of_map(umbrix_picture const& source, Settings const& settings)
{
    return source.layout.channels % 2 == 0 || settings.height_in_alpha ? 4 : 3;
}

/// What heights tell that were brought to 0 to 1.
Attributes attributes_of_taken(ToldHeights const& taken)
{
    Attributes attributes{{"umbrix", "heights"}, {"kind", "heights"}};
    if (taken.unit != 1.0) {
        tell_range(attributes, {HeightRange::How::kGiven, 0.0, taken.unit});
    }
    return attributes;
}

umbrix_code make_map(umbrix_context* context, umbrix_picture const* source, umbrix_settings const* settings,
                     umbrix_picture* result, void (*change)(Settings&))
{
    return work(context, source, [&](CallObserver& observer) {
        require(source, "source");
        MapJob job;
        job.files = files_of(*source);
        job.settings = settings_of(settings);
        change(job.settings);
        job.kind = kind_of(*source, job.settings);
        check_result(result, "result", size_of(*source), channels_of_map(*source, job.settings));
        give(make(job, prepared(source, "source", observer), kFloats, observer).map, source->name, *result);
    });
}

} // namespace

umbrix_code umbrix_make_map(umbrix_context* context, umbrix_picture const* source,
                            umbrix_settings const* settings, umbrix_picture* result)
{
    return make_map(context, source, settings, result, [](Settings&) {});
}

umbrix_code umbrix_make_light(umbrix_context* context, umbrix_picture const* source,
                              umbrix_settings const* settings, umbrix_picture* result)
{
    return make_map(context, source, settings, result, [](Settings& all) {
        all.light = true;
        all.occlusion = false;
    });
}

umbrix_code umbrix_make_occlusion(umbrix_context* context, umbrix_picture const* source,
                                  umbrix_settings const* settings, umbrix_picture* result)
{
    return make_map(context, source, settings, result, [](Settings& all) {
        all.light = false;
        all.occlusion = true;
    });
}

umbrix_code umbrix_read_heights(umbrix_context* context, umbrix_picture const* source,
                                umbrix_settings const* settings, umbrix_picture* result)
{
    return work(context, source, [&](CallObserver& observer) {
        require(source, "source");
        check_result(result, "result", size_of(*source), 1);
        PreparedInput input = prepared(source, "source", observer);
        ToldHeights const heights =
            told_heights(input.picture.attributes, height_reading_of(settings_of(settings)));
        take_for_heights(input, heights.reading, source->name, observer);
        Picture made = in_floats(channel_of(input.picture, HeightChannel::kMean, source->name));
        made.kind = PictureKind::kHeights;
        made.attributes = attributes_of_taken(heights);
        give(std::move(made), source->name, *result);
    });
}

umbrix_code umbrix_read_normals(umbrix_context* context, umbrix_picture const* source,
                                umbrix_settings const* settings, umbrix_picture* result)
{
    return work(context, source, [&](CallObserver& observer) {
        require(source, "source");
        check_result(result, "result", size_of(*source), 3);
        PreparedInput const input = prepared(source, "source", observer);
        give(read_vectors({input.picture, source->name, settings_of(settings), std::nullopt}, observer),
             source->name, *result);
    });
}

umbrix_code umbrix_make_normals(umbrix_context* context, umbrix_picture const* heights,
                                umbrix_settings const* settings, umbrix_picture* result)
{
    return work(context, heights, [&](CallObserver& observer) {
        require(heights, "heights");
        check_result(result, "result", size_of(*heights), 3);
        NormalJob job;
        job.files = files_of(*heights);
        job.settings = settings_of(settings);
        job.normal_y = job.settings.normal_y;
        give(make(job, prepared(heights, "heights", observer), kFloats, observer).normals, heights->name,
             *result);
    });
}

umbrix_code umbrix_make_heights(umbrix_context* context, umbrix_picture const* normals,
                                umbrix_settings const* settings, umbrix_picture* result,
                                umbrix_height_range* range)
{
    return work(context, normals, [&](CallObserver& observer) {
        require(normals, "normals");
        check_result(result, "result", size_of(*normals), 1);
        HeightJob job;
        job.files = files_of(*normals);
        job.settings = settings_of(settings);
        HeightsMade made = make(job, prepared(normals, "normals", observer), kFloats, observer);
        fill_record(range, {0, made.report.low, made.report.high});
        give(std::move(made.heights), normals->name, *result);
    });
}

umbrix_code umbrix_make_bent(umbrix_context* context, umbrix_picture const* heights,
                             umbrix_settings const* settings, umbrix_picture* bent, umbrix_picture* occlusion)
{
    return work(context, heights, [&](CallObserver& observer) {
        require(heights, "heights");
        for (auto const& [result, name, channels] :
             {std::tuple(bent, "bent", 3), std::tuple(occlusion, "occlusion", 1)}) {
            if (result != nullptr) {
                check_result(result, name, size_of(*heights), channels);
            }
        }
        BentJob job;
        job.files = files_of(*heights);
        job.settings = settings_of(settings);
        job.normal_y = job.settings.normal_y;
        BentMade made = make(job, prepared(heights, "heights", observer),
                             bent != nullptr ? std::optional(kFloats) : std::nullopt,
                             occlusion != nullptr ? std::optional(kFloats) : std::nullopt, observer);
        if (bent != nullptr) {
            give(std::move(made.bent), heights->name, *bent);
        }
        if (occlusion != nullptr) {
            give(std::move(made.occlusion), heights->name, *occlusion);
        }
    });
}
