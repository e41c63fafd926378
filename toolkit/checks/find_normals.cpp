// SPDX-License-Identifier: MIT
#include "toolkit/checks/find_normals.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// Sound maps have none; of author maps that went through JPEG 17 to 54 % of the texels were off.
constexpr double kLeastShare = 0.001;

/// Normals at the end of the scale, of which sound maps have none.
constexpr double kLeastClipped = 0.0001;

/// Blue is constant if its samples differ by less than this of full scale.
constexpr double kConstant = 1.5 / 255.0;

/// Slopes of sound maps fit 1.6 times better as they are than with green turned over, and 2.5 times better
/// than with red and green swapped. A map whose axes are swapped has it the other way round.
constexpr double kTellsGreen = 1.2;
constexpr double kTellsSwapped = 1.4;

/// Flat ground is found where neighbours are all the same: that many of the texels, and so many times as many
/// as with the values next to it, which gentle slopes have as often.
constexpr double kLeastFlat = 0.002;
constexpr std::size_t kFewestFlat = 16;
constexpr double kFlatBeyondSlopes = 4.0;

double times(double worse, double better)
{
    return better > 0.0 ? std::min(worse / better, kMostStrength) : worse > 0.0 ? kMostStrength : 1.0;
}

/// How often a channel has 127 and 128 on flat ground; 0 where that is no more than slopes have.
struct FlatOfChannel {
    std::size_t lower = 0;
    std::size_t upper = 0;

    bool is_flat() const { return lower > 0 || upper > 0; }
    bool is_mixed() const { return lower > 0 && upper > 0; }
    std::uint8_t value() const { return lower >= upper ? 127 : 128; }
};

FlatOfChannel flat_of(std::array<Tally, NormalSums::kFlats> const& counts, std::size_t texels)
{
    auto const beside = static_cast<double>(std::max(counts[0].count(), counts[3].count()));
    auto const counted = [&](Tally const& tally) {
        bool const is_flat = tally.share(texels) >= kLeastFlat && tally.count() >= kFewestFlat &&
                             static_cast<double>(tally.count()) >= kFlatBeyondSlopes * beside;
        return is_flat ? tally.count() : 0;
    };
    return {counted(counts[1]), counted(counts[2])};
}

char const* name_of_channel(std::size_t channel)
{
    return channel == 0 ? "red" : "green";
}

void judge_lengths(Picture const& normals, NormalSums const& sums, Findings& findings)
{
    std::size_t const texels = normals.texels();
    if (sums.off_length.share(texels) < kLeastShare) {
        return;
    }
    findings.push_back(
        {"normal-length",
         fmt::format("normals are not of length 1 but {:.3g} to {:.3g}, {:.3g} on average: {}", sums.shortest,
                     sums.longest, sums.length_sum / static_cast<double>(texels),
                     in_words(sums.off_length, texels, normals.height)),
         sums.off_length.count(), std::max(1.0 - sums.shortest, sums.longest - 1.0),
         sums.off_length.first(normals.height), "brings these to length 1"});
}

/// True if blue is constant and should not be; what else is wrong with it follows from that.
bool judge_constant_blue(Picture const& normals, NormalSums const& sums, Findings& findings)
{
    std::size_t const texels = normals.texels();
    double const spread = static_cast<double>(sums.most_blue - sums.least_blue) / full_scale(normals.type);
    if (spread > kConstant || sums.off_blue.share(texels) < kLeastShare) {
        return false;
    }
    findings.push_back(
        {"blue-constant",
         fmt::format("blue is {:.4g} everywhere, and not what red and green tell in {}",
                     static_cast<double>(sums.least_blue), in_words(sums.off_blue, texels, normals.height)),
         sums.off_blue.count(), sums.most_off_blue, sums.off_blue.first(normals.height),
         "makes blue from red and green"});
    return true;
}

void judge_blue(Picture const& normals, NormalSums const& sums, Findings& findings)
{
    if (sums.down.count() > 0) {
        findings.push_back({"blue-below-half",
                            fmt::format("normals point into the surface, down to {:.3g}: {}", sums.lowest,
                                        in_words(sums.down, normals.texels(), normals.height)),
                            sums.down.count(), sums.lowest, sums.down.first(normals.height)});
    }
}

void judge_clipping(Picture const& normals, NormalSums const& sums, Findings& findings)
{
    double const share = sums.clipped.share(normals.texels());
    if (share >= kLeastClipped) {
        findings.push_back({"clipped",
                            fmt::format("red or green is cut off at an end of the scale: {}",
                                        in_words(sums.clipped, normals.texels(), normals.height)),
                            sums.clipped.count(), share, sums.clipped.first(normals.height)});
    }
}

void judge_flat(Picture const& normals, NormalSums const& sums, Findings& findings)
{
    auto const mixed = mixed_flat_of(sums, normals.texels());
    if (!mixed) {
        return;
    }
    int const other = mixed->kept == 127 ? 128 : 127;
    std::string const where =
        mixed->between_channels
            ? fmt::format("{} in {} and {} in {}", other, name_of_channel(mixed->channel), mixed->kept,
                          name_of_channel(1 - mixed->channel))
            : fmt::format("now {}, now {} in {}", mixed->kept, other, name_of_channel(mixed->channel));
    findings.push_back({"flat-value",
                        fmt::format("flat ground is {}: {} have {}", where,
                                    in_words(mixed->others, normals.texels(), normals.height), other),
                        mixed->others.count(), mixed->share, mixed->others.first(normals.height),
                        fmt::format("stores it as {}", mixed->kept)});
}

/// True if the axes are swapped: green tells nothing then.
bool judge_axes(NormalSums const& sums, Findings& findings)
{
    double const as_they_are = std::min(sums.curl[0], sums.curl[1]);
    double const swapped = std::min(sums.curl[2], sums.curl[3]);
    double const better = times(as_they_are, swapped);
    if (better < kTellsSwapped) {
        return false;
    }
    findings.push_back(
        {"axes-swapped",
         fmt::format("red and green are swapped: their slopes are {:.3g} times nearer to those of a "
                     "surface the other way round",
                     better),
         0, better});
    return true;
}

void judge_green(GreenTold const& told, NormalY asked, Findings& findings)
{
    if (!told.green || *told.green == asked) {
        return;
    }
    findings.push_back(
        {"green-direction",
         fmt::format("green points {}: slopes are {:.3g} times nearer to those of a surface so than "
                     "the other way",
                     *told.green == NormalY::kUp ? "up" : "down", told.times),
         0, told.times, std::nullopt, "turns green over"});
}

} // namespace

GreenTold green_of_slopes(NormalSums const& sums)
{
    bool const up = sums.curl[0] <= sums.curl[1];
    double const better = up ? times(sums.curl[1], sums.curl[0]) : times(sums.curl[0], sums.curl[1]);
    bool const swapped =
        times(std::min(sums.curl[0], sums.curl[1]), std::min(sums.curl[2], sums.curl[3])) >= kTellsSwapped;
    if (better < kTellsGreen || swapped) {
        return {std::nullopt, better};
    }
    return {up ? NormalY::kUp : NormalY::kDown, better};
}

std::optional<MixedFlat> mixed_flat_of(NormalSums const& sums, std::size_t texels)
{
    std::array<FlatOfChannel, 2> const flat{flat_of(sums.flat[0], texels), flat_of(sums.flat[1], texels)};
    for (std::size_t c = 0; c < 2; ++c) {
        if (flat[c].is_mixed()) {
            std::uint8_t const kept = flat[c].value();
            Tally const& others = sums.flat[c][kept == 127 ? 2 : 1];
            double const all = static_cast<double>(flat[c].lower + flat[c].upper);
            return MixedFlat{false, c, kept, others, static_cast<double>(others.count()) / all};
        }
    }
    if (!flat[0].is_flat() || !flat[1].is_flat() || flat[0].value() == flat[1].value()) {
        return std::nullopt;
    }
    auto const many = [&](std::size_t c) { return flat[c].lower + flat[c].upper; };
    std::size_t const channel = many(1) > many(0) ? 0 : 1;
    std::uint8_t const kept = flat[1 - channel].value();
    Tally const& others = sums.flat[channel][kept == 127 ? 2 : 1];
    return MixedFlat{true, channel, kept, others,
                     static_cast<double>(others.count()) / static_cast<double>(many(0) + many(1))};
}

void find_in_normals(Picture const& normals, NormalSums const& sums, std::optional<NormalY> asked,
                     bool dithered, Findings& findings)
{
    if (!judge_constant_blue(normals, sums, findings)) {
        judge_lengths(normals, sums, findings);
        judge_blue(normals, sums, findings);
    }
    judge_clipping(normals, sums, findings);
    if (!dithered) {
        judge_flat(normals, sums, findings);
    }
    if (!judge_axes(sums, findings) && asked) {
        judge_green(green_of_slopes(sums), *asked, findings);
    }
}

} // namespace umbrixlib::toolkit
