// SPDX-License-Identifier: MIT
#include "normals/height_to_normal.h"

#include "boundary/image_io.h"
#include "boundary/texture_kernels.h"
#include "filters/narrowing.h"
#include "normals/colour_heights_internal.h"
#include "normals/filter_tables_internal.h"

#include <cstddef>
#include <memory>

namespace umbrixlib::detail {

namespace {

/// Runs the bilateral filter into a buffer that nobody reads; see the contract in the header.
void filter_without_effect(float3* image, ImageSize size, std::size_t texels, float radius)
{
    auto const spatial = std::make_unique<float[]>(spatial_table_size(radius));
    float range[kRangeTableSize] = {};
    auto const filtered = std::make_unique<float3[]>(texels);
    GenerateExp(radius, spatial.get());
    GenerateExp(kRangeSigma, range);
    BilateralFilter(image, filtered.get(), size.height, size.width, radius, spatial.get(), range);
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib;
using namespace umbrixlib::detail;

bool HeightToNormal(char const* source, char const* destination, float n_scale, float gaussian,
                    bool /*normal_flag_1*/, int /*mode*/, float L_Detail, bool /*normal_flag_2*/,
                    bool /*normal_flag_3*/, std::string* progress_text, int* progress)
{
    prepare_devil(Overwrite::kAllow);
    if (load_image(source) == FileOutcome::kMessageShown) {
        return false;
    }
    ImageSize const size = bound_image_size();
    auto const texels = static_cast<std::ptrdiff_t>(size.width) * size.height;
    auto const count = static_cast<std::size_t>(texels);
    ImageBytes const bytes = make_image_bytes(count, 3);
    copy_pixels(size, PixelFormat::kRgb, bytes.get());
    PictureView const view{bytes.get(), size.width, size.height, 3, SampleType::kUint8};
    auto const image = fetch_colours(PictureSamples::of(view), size.height, size.width);
    RunReport report(progress_text, progress);
    report.begin("Generating Normal");
    if (L_Detail > 1.0f) {
        filter_without_effect(image.get(), size, count, L_Detail);
    }
    turn_into_normals(image.get(), size.height, size.width, n_scale, gaussian, report);

    normals_to_bytes(image.get(), texels, bytes.get());
    refill_image(size, bytes.get());
    return save_image(destination) != FileOutcome::kMessageShown;
}

} // namespace umbrix_v0
