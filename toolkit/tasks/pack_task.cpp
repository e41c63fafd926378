// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <fmt/format.h>
#include <type_traits>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

OutputFormat const& checked_format(PackJob const& job)
{
    Output const& output = job.files.output;
    OutputFormat const& format = *output_format(output.file);
    saved_as(output.saving, format, PictureKind::kLight, output.name);
    if (job.channels.size() > 3 && !format.alpha) {
        throw no_alpha(format, output.name);
    }
    return format;
}

/// The deeper of two types; the one that holds what both hold.
SampleType deeper(SampleType one, SampleType other)
{
    using enum SampleType;
    auto const [low, high] = std::minmax(one, other);
    return low == kUint16 && high == kHalf ? kFloat : high;
}

/// A picture in floats while its channels are filled in.
class Packing {
public:
    Packing(PackJob const& job, OutputFormat const& format, Observer& observer)
        : job_(job), format_(format), observer_(observer)
    {
    }

    /// Takes from @p file all that channels want of it.
    void take(std::string const& file)
    {
        DecodedImage image = decode_input({file, file, job_.files.max_texels}, observer_);
        for (std::string const& note : image.notes()) {
            observer_.note(file, {note});
        }
        begin_or_check_size(image.width(), image.height(), file);
        Picture picture = image.release_picture();
        deepest_ = deeper(deepest_, picture.type);
        if (is_whole(depth_for(picture.type))) {
            encode_vectors(picture, file, observer_);
        }
        for (std::size_t i = 0; i < job_.channels.size(); ++i) {
            if (job_.channels[i].file == file) {
                fill(i, picture);
            }
        }
    }

    /// The picture with all its channels.
    Picture finish()
    {
        for (std::size_t i = 0; i < job_.channels.size(); ++i) {
            if (job_.channels[i].file.empty()) {
                fill(i, [&](std::size_t) { return job_.channels[i].value; });
            }
        }
        SavedAs const as = saved_as_deep(deepest_, job_.files.output.saving, format_, PictureKind::kUnknown,
                                         job_.files.output.name);
        if (is_whole(as.depth)) {
            note_what_is_cut();
        }
        return in_samples(std::move(floats_), as);
    }

private:
    SampleType depth_for(SampleType source) const
    {
        return job_.files.output.saving.depth.value_or(nearest_depth(format_, source));
    }

    void begin_or_check_size(int width, int height, std::string const& file)
    {
        if (floats_.channels == 0) {
            check_size(format_, job_.files.output.name, width, height);
            floats_ = make_picture(width, height, static_cast<int>(job_.channels.size()), SampleType::kFloat);
            outside_.assign(job_.channels.size(), 0);
        } else {
            check_same_size(file, {width, height}, job_.files.input, {floats_.width, floats_.height});
        }
    }

    void fill(std::size_t place, Picture const& picture)
    {
        PackedChannel const& channel = job_.channels[place];
        bool const grey = picture.channels < 3 && channel.from != HeightChannel::kAlpha;
        Picture const plane = channel_of(picture, grey ? HeightChannel::kRed : channel.from, channel.file);
        double const full = full_scale(plane.type);
        with_samples(plane, [&](auto samples) {
            fill(place, [&](std::size_t i) {
                double const value = to_number(samples[i]) / full;
                return channel.invert ? 1.0 - value : value;
            });
        });
    }

    /// @param value_at Tells the value of a texel.
    template <typename ValueAt>
    void fill(std::size_t place, ValueAt&& value_at) requires std::is_invocable_v<ValueAt, std::size_t>
    {
        float* const first = floats_.samples<float>().data() + place;
        for (std::size_t i = 0; i < floats_.texels(); ++i) {
            double const value = value_at(i);
            first[i * job_.channels.size()] = static_cast<float>(value);
            outside_[place] += value >= 0.0 && value <= 1.0 ? 0 : 1;
        }
    }

    void note_what_is_cut() const
    {
        for (std::size_t i = 0; i < outside_.size(); ++i) {
            if (outside_[i] > 0) {
                observer_.note(job_.channels[i].file,
                               {fmt::format("{} of {} samples lie outside 0 to 1 and are cut", outside_[i],
                                            floats_.texels())});
            }
        }
    }

    PackJob const& job_;
    OutputFormat const& format_;
    Observer& observer_;
    Picture floats_;
    SampleType deepest_ = SampleType::kUint8;
    std::vector<std::size_t> outside_; ///< How many samples of a channel lie outside 0..1, or are NaN.
};

} // namespace

PackReport run(PackJob const& job, Observer& observer)
{
    OutputFormat const& format = checked_format(job);
    Packing packing(job, format, observer);
    for (std::string const& file : distinct_inputs(job)) {
        packing.take(file);
    }
    observer.begin(Phase::kMaking, job.files.input);
    Picture picture = packing.finish();
    picture.attributes = attributes_of_packed("pack");
    write_picture(job.files.output.file, format, job.files.output.name, picture,
                  job.files.output.saving.compression, observer);
    return {picture.width, picture.height, description_of(picture)};
}

} // namespace umbrixlib::toolkit
