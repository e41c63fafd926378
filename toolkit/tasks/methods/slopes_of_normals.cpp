// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/slopes_of_normals.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/pictures/analysis/channel_ranges.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <span>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

constexpr double kLeastUpInFloats = 1e-6;
constexpr std::size_t kMostJudgedRows = 256;

struct Vector {
    double x;
    double y;
    double z;
};

struct Slope {
    float x;
    float y;
};

/// The normals of a row, as @p reading has them.
template <typename Sample>
class NormalRow {
public:
    NormalRow(std::span<Sample const> samples, Picture const& picture, std::size_t y,
              NormalReading const& reading)
        : step_(static_cast<std::size_t>(picture.channels)),
          samples_(samples.data() + y * static_cast<std::size_t>(picture.width) * step_), reading_(reading)
    {
    }

    Vector at(std::size_t x) const
    {
        Sample const* const texel = samples_ + x * step_;
        return {component(texel[0]), component(texel[1]), component(texel[2])};
    }

private:
    double component(Sample sample) const
    {
        double const value = to_number(sample) * reading_.scale + reading_.offset;
        return value > 1.0 ? 1.0 : std::abs(value) <= reading_.flat ? 0.0 : value; // NaN stays NaN
    }

    std::size_t step_;
    Sample const* samples_;
    NormalReading const& reading_;
};

bool is_invalid(Vector const& normal)
{
    return !std::isfinite(normal.x + normal.y + normal.z);
}

/// A normal that lies in the plane as far as its samples tell is steep; one that points below it is odd.
bool is_turned_away(Vector const& normal, NormalReading const& reading)
{
    return normal.z < -reading.least_up || (normal.z <= 0.0 && normal.x == 0.0 && normal.y == 0.0);
}

/// What the heights rise by over two texels, times the strength of the normals. Flat where a normal is odd.
Slope slope_of(Vector const& normal, NormalReading const& reading)
{
    if (is_invalid(normal) || is_turned_away(normal, reading)) {
        return {0.0f, 0.0f};
    }
    double const up = std::max(normal.z, reading.least_up);
    return {static_cast<float>(-normal.x / up), static_cast<float>(-normal.y / up)};
}

/// Whole numbers that stand for components @p step apart.
NormalReading of_whole(char const* name, double step, double offset)
{
    return {name, step, offset, step / 4.0};
}

/// Words are rounded, and flat ground lies between two of them: either stands for it.
NormalReading reading_of_words()
{
    constexpr double kStep = 2.0 / 65535.0;
    NormalReading reading = of_whole("words", kStep, -1.0);
    reading.flat = 0.75 * kStep;
    return reading;
}

/// The readings of bytes that are @p apart in the samples.
std::vector<NormalReading> readings_of_bytes(double apart)
{
    std::vector<NormalReading> readings{
        of_whole("bytes that were cut off", 2.0 / 255.0, 1.0 / 255.0 - 1.0),
        of_whole("bytes that were rounded", 2.0 / 255.0, -1.0),
        of_whole("bytes with flat ground at 128", 1.0 / 127.0, -128.0 / 127.0)};
    for (NormalReading& each : readings) {
        each.scale /= apart;
    }
    return readings;
}

/// Mean difference of lengths from 1, and of slopes from those of a surface, of some rows.
class Fitness {
public:
    void add_length(Vector const& normal)
    {
        sum_ += std::abs(std::sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z) - 1.0);
    }

    /// @param curl Of slopes around a normal whose component z is @p up; in parts of a normal's length.
    void add_curl(double curl, double up) { sum_ += std::abs(curl) * up * up; }

    double sum() const { return sum_; }

private:
    double sum_ = 0.0;
};

/// The curl of central differences is 0 where they are those of a surface.
template <typename Sample>
double misfit(std::span<Sample const> samples, Picture const& picture, NormalReading const& reading)
{
    auto const width = static_cast<std::size_t>(picture.width);
    auto const height = static_cast<std::size_t>(picture.height);
    Fitness fitness;
    std::size_t const stride = std::max<std::size_t>(height / kMostJudgedRows, 1);
    for (std::size_t y = 0; y < height; y += stride) {
        NormalRow<Sample> const row(samples, picture, y, reading);
        for (std::size_t x = 0; x < width; ++x) {
            if (Vector const normal = row.at(x); !is_invalid(normal)) {
                fitness.add_length(normal);
            }
        }
        if (y == 0 || y + 1 >= height) {
            continue;
        }
        NormalRow<Sample> const below(samples, picture, y - 1, reading);
        NormalRow<Sample> const above(samples, picture, y + 1, reading);
        auto const slope = [&](NormalRow<Sample> const& of, std::size_t x) {
            return slope_of(of.at(x), reading);
        };
        for (std::size_t x = 1; x + 1 < width; ++x) {
            double const up = row.at(x).z;
            double const curl = static_cast<double>(slope(above, x).x - slope(below, x).x) -
                                static_cast<double>(slope(row, x + 1).y - slope(row, x - 1).y);
            fitness.add_curl(curl / 2.0, std::isfinite(up) ? up : 0.0);
        }
    }
    return fitness.sum();
}

NormalReading best_of(std::vector<NormalReading> const& readings, Picture const& normals)
{
    return with_samples(normals, [&](auto samples) {
        auto const misfit_of = [&](NormalReading const& each) { return misfit(samples, normals, each); };
        std::vector<double> misfits(readings.size());
        on_all_threads(readings.size(), [&](auto const& next) {
            for (std::size_t i = next(); i < readings.size(); i = next()) {
                misfits[i] = misfit_of(readings[i]);
            }
        });
        return readings[static_cast<std::size_t>(std::ranges::min_element(misfits) - misfits.begin())];
    });
}

NormalReading reading_of_floats(Picture const& normals)
{
    std::string const coding = value_of(normals.attributes, "coding");
    bool const are_vectors = coding == "-1..1" || (coding != "0..1" && has_vectors(normals));
    return are_vectors ? NormalReading{"vectors", 1.0, 0.0, kLeastUpInFloats}
                       : NormalReading{"colours of vectors", 2.0, -1.0, kLeastUpInFloats};
}

} // namespace

NormalReading reading_of_normals(Picture const& normals)
{
    if (normals.type == SampleType::kHalf || normals.type == SampleType::kFloat) {
        return reading_of_floats(normals);
    }
    bool const words = normals.type == SampleType::kUint16;
    if (words && !has_8_bit_steps(normals)) {
        return reading_of_words();
    }
    std::vector<NormalReading> const readings = readings_of_bytes(words ? 257.0 : 1.0);
    if (value_of(normals.attributes, "kind") == "normals") {
        return readings[value_of(normals.attributes, "rounding").empty() ? 0 : 1];
    }
    return best_of(readings, normals);
}

CentralDifferences differences_of_normals(Picture const& normals, NormalReading const& reading, NormalY green,
                                          double n_scale, OddNormals& odd)
{
    auto const width = static_cast<std::size_t>(normals.width);
    auto const by_x = static_cast<float>(1.0 / n_scale);
    float const by_y = green == NormalY::kUp ? by_x : -by_x;
    CentralDifferences made{normals.width, normals.height, std::vector<float>(normals.texels()),
                            std::vector<float>(normals.texels())};
    std::atomic<std::size_t> invalid = 0;
    std::atomic<std::size_t> turned_away = 0;
    with_samples(normals, [&]<typename Sample>(std::span<Sample const> samples) {
        on_all_threads(static_cast<std::size_t>(normals.height), [&](auto const& next) {
            for (std::size_t y = next(); y < static_cast<std::size_t>(normals.height); y = next()) {
                NormalRow<Sample> const row(samples, normals, y, reading);
                OddNormals found;
                for (std::size_t x = 0; x < width; ++x) {
                    Vector const normal = row.at(x);
                    bool const is_odd = is_invalid(normal);
                    found.invalid += is_odd ? 1 : 0;
                    found.turned_away += !is_odd && is_turned_away(normal, reading) ? 1 : 0;
                    Slope const slope = slope_of(normal, reading);
                    made.along_rows[y * width + x] = slope.x * by_x;
                    made.across_rows[y * width + x] = slope.y * by_y;
                }
                invalid += found.invalid;
                turned_away += found.turned_away;
            }
        });
    });
    odd = {invalid, turned_away};
    return made;
}

} // namespace umbrixlib::toolkit
