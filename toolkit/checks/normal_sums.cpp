// SPDX-License-Identifier: MIT
#include "toolkit/checks/normal_sums.h"

#include "toolkit/checks/colour_rows.h"

#include <algorithm>
#include <cmath>

namespace umbrixlib::toolkit {

namespace {

/// A slope beyond that counts as this steep: one step of a byte changes it too much.
constexpr double kLeastUp = 0.1;

/// A normal whose red or green is at the end of the scale has less z than that, with rounding of bytes.
constexpr double kMostUpAtEnds = 0.15;

/// Bytes of 127 and 126 may be what became of 0.
constexpr double kBelowHalf = -1.5 / 127.5;

/// The normals of a row, and their slopes.
struct NormalsOfRow {
    std::vector<float> samples;
    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> z;
    std::vector<double> slope_x;
    std::vector<double> slope_y;

    void read(ColourRows const& rows, std::size_t row, NormalCode const& code)
    {
        rows.read(row, samples);
        for (auto* const each : {&x, &y, &z, &slope_x, &slope_y}) {
            each->resize(rows.width());
        }
        for (std::size_t i = 0; i < rows.width(); ++i) {
            x[i] = static_cast<double>(samples[3 * i]) * code.scale + code.offset;
            y[i] = static_cast<double>(samples[3 * i + 1]) * code.scale + code.offset;
            z[i] = static_cast<double>(samples[3 * i + 2]) * code.scale + code.offset;
            double const up = 1.0 / std::max(z[i], kLeastUp); // NaN gives the least, too
            slope_x[i] = x[i] * up;
            slope_y[i] = y[i] * up;
        }
    }
};

/// Looks at texels by themselves.
class TexelLook {
public:
    explicit TexelLook(Picture const& normals)
        : end_(full_scale(normals.type)),
          has_ends_(normals.type == SampleType::kUint8 || normals.type == SampleType::kUint16)
    {
    }

    void look(NormalsOfRow const& row, std::size_t y, NormalSums& sums) const
    {
        for (std::size_t i = 0; i < row.x.size(); ++i) {
            double const across = row.x[i] * row.x[i] + row.y[i] * row.y[i];
            double const length = std::sqrt(across + row.z[i] * row.z[i]);
            if (!std::isfinite(length)) {
                continue; // found by itself
            }
            sums.length_sum += length;
            if (is_off(length)) {
                sums.off_length.add(i, y);
                sums.shortest = std::min(sums.shortest, length);
                sums.longest = std::max(sums.longest, length);
            }
            if (row.z[i] < kBelowHalf) {
                sums.down.add(i, y);
                sums.lowest = std::min(sums.lowest, row.z[i]);
            }
            look_at_blue(row, i, y, across, sums);
            look_at_ends(row, i, y, sums);
        }
    }

private:
    void look_at_blue(NormalsOfRow const& row, std::size_t i, std::size_t y, double across,
                      NormalSums& sums) const
    {
        float const blue = row.samples[3 * i + 2];
        sums.least_blue = std::min(sums.least_blue, blue);
        sums.most_blue = std::max(sums.most_blue, blue);
        double const off = std::abs(std::sqrt(std::max(1.0 - across, 0.0)) - row.z[i]);
        if (off > kMostOffLength) {
            sums.off_blue.add(i, y);
            sums.most_off_blue = std::max(sums.most_off_blue, off);
        }
    }

    void look_at_ends(NormalsOfRow const& row, std::size_t i, std::size_t y, NormalSums& sums) const
    {
        double const red = static_cast<double>(row.samples[3 * i]);
        double const green = static_cast<double>(row.samples[3 * i + 1]);
        bool const at_end = red <= 0.0 || green <= 0.0 || red >= end_ || green >= end_;
        if (has_ends_ && at_end && row.z[i] > kMostUpAtEnds) {
            sums.clipped.add(i, y);
        }
    }

    double end_;
    bool has_ends_;
};

void look_for_flat(NormalsOfRow const& below, NormalsOfRow const& row, NormalsOfRow const& above,
                   std::size_t y, NormalSums& sums)
{
    for (std::size_t i = 1; i + 1 < row.x.size(); ++i) {
        for (std::size_t c = 0; c < 2; ++c) {
            std::size_t const at = 3 * i + c;
            float const value = row.samples[at];
            std::size_t const flat = static_cast<std::size_t>(value) - NormalSums::kFirstFlat;
            if (flat < NormalSums::kFlats && row.samples[at - 3] == value && row.samples[at + 3] == value &&
                below.samples[at] == value && above.samples[at] == value) {
                sums.flat[c][flat].add(i, y);
            }
        }
    }
}

/// The curl of central differences is 0 where they are those of a surface.
void add_curl(NormalsOfRow const& below, NormalsOfRow const& row, NormalsOfRow const& above, NormalSums& sums)
{
    for (std::size_t i = 1; i + 1 < row.x.size(); ++i) {
        double const weight = row.z[i] * row.z[i] / 2.0;
        double const x_along = row.slope_x[i + 1] - row.slope_x[i - 1];
        double const x_across = above.slope_x[i] - below.slope_x[i];
        double const y_along = row.slope_y[i + 1] - row.slope_y[i - 1];
        double const y_across = above.slope_y[i] - below.slope_y[i];
        double const curls[] = {x_across - y_along, x_across + y_along, y_across - x_along,
                                y_across + x_along};
        for (std::size_t k = 0; k < 4; ++k) {
            double const curl = std::abs(curls[k]) * weight;
            sums.curl[k] += std::isfinite(curl) ? curl : 0.0;
        }
    }
}

} // namespace

void NormalSums::add(NormalSums const& other)
{
    off_length.add(other.off_length);
    shortest = std::min(shortest, other.shortest);
    longest = std::max(longest, other.longest);
    length_sum += other.length_sum;
    down.add(other.down);
    lowest = std::min(lowest, other.lowest);
    least_blue = std::min(least_blue, other.least_blue);
    most_blue = std::max(most_blue, other.most_blue);
    off_blue.add(other.off_blue);
    most_off_blue = std::max(most_off_blue, other.most_off_blue);
    clipped.add(other.clipped);
    for (std::size_t c = 0; c < flat.size(); ++c) {
        for (std::size_t k = 0; k < kFlats; ++k) {
            flat[c][k].add(other.flat[c][k]);
        }
    }
    for (std::size_t k = 0; k < curl.size(); ++k) {
        curl[k] += other.curl[k];
    }
}

NormalSums sums_of_normals(Picture const& normals, NormalCode const& code)
{
    ColourRows const rows(normals);
    TexelLook const texels(normals);
    auto const bands = in_bands(rows.height(), [&](RowBand const& band) {
        NormalSums sums;
        NormalsOfRow below;
        NormalsOfRow row;
        NormalsOfRow above;
        if (band.begin > 0) {
            below.read(rows, band.begin - 1, code);
        }
        row.read(rows, band.begin, code);
        for (std::size_t y = band.begin; y < band.end; ++y) {
            texels.look(row, y, sums);
            if (y + 1 < rows.height()) {
                above.read(rows, y + 1, code);
            }
            if (y > 0 && y + 1 < rows.height()) {
                add_curl(below, row, above, sums);
                if (normals.type == SampleType::kUint8) {
                    look_for_flat(below, row, above, y, sums);
                }
            }
            std::swap(below, row);
            std::swap(row, above);
        }
        return sums;
    });
    NormalSums all;
    for (NormalSums const& band : bands) {
        all.add(band);
    }
    return all;
}

} // namespace umbrixlib::toolkit
