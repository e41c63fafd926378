// SPDX-License-Identifier: MIT
#include "toolkit/tasks/prepared_input.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/stop.h"
#include "toolkit/pictures/address_space.h"
#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/pictures/naming.h"

#include <fmt/format.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

// A decoder holds the picture twice while it turns it over, in up to 16 bytes a texel; the program itself
// needs the rest.
constexpr double kBytesPerTexel = 32.0;
constexpr double kProgram = 1024.0 * 1024.0 * 1024.0;

constexpr char const* kCoding = "coding";

void note_conversion(DecodedImage const& image, Source const& source, Observer& observer)
{
    if (image.bits_per_channel() == 8 && !image.is_plain()) {
        observer.note(source.name, {fmt::format("{} is converted to {} bits a texel", image.description(),
                                                image.has_alpha() ? 32 : 24),
                                    NoteKind::kPlain, true});
    }
}

/// Bringing a large picture in takes long enough to be stopped.
void end_if_stopping(Observer const& observer)
{
    if (observer.stopping()) {
        throw Stopped();
    }
}

} // namespace

void check_same_size(std::string const& name, PictureSize size, std::string const& what, PictureSize other)
{
    if (size != other) {
        throw Failure(Fault::kSizesDiffer, name,
                      fmt::format("its size is {} x {} and that of {} {} x {}", size.width, size.height, what,
                                  other.width, other.height));
    }
}

std::optional<HeightRange> take_for_heights(PreparedInput& input, HeightReading const& reading,
                                            std::string const& name, Observer& observer)
{
    end_if_stopping(observer);
    return take_heights(input.picture, reading, name, observer);
}

std::optional<HeightRange> take_for_normals(PreparedInput& input, HeightReading const& reading,
                                            std::string const& name, Observer& observer)
{
    if (reading.channel != HeightChannel::kMean) {
        observer.note(name,
                      {"the heights of a normal map are those in its alpha, whatever channel is asked for"});
    }
    SampleType const type = input.picture.type;
    end_if_stopping(observer);
    bool const is_float = type == SampleType::kHalf || type == SampleType::kFloat;
    std::string const coding = value_of(input.picture.attributes, kCoding);
    bool const told = coding == "-1..1" || coding == "0..1";
    if (is_float && (told ? coding == "-1..1" : has_vectors(input.picture))) {
        input.picture = encoded_vectors(input.picture);
        observer.note(name, {told ? "its normals are -1 to 1, as it tells itself"
                                  : "its normals go below 0 and are taken for -1 to 1"});
    }
    if (flatten_invalid_normals(input.picture, reading.invalid.replacement.has_value(), name) > 0) {
        observer.note(name, {"what is NaN or infinite in its normals is taken for flat ground"});
    }
    return take_heights_in_alpha(input.picture, reading, name, observer);
}

bool are_vectors(Picture const& picture, std::string const& name)
{
    if (is_whole(picture.type) || picture.channels < 3) {
        return false;
    }
    std::string const coding = value_of(picture.attributes, kCoding);
    return coding.empty() ? has_vectors(picture) && guess_kind(picture, name).kind == Kind::kNormalMap
                          : coding == "-1..1";
}

void encode_vectors(Picture& picture, std::string const& name, Observer& observer)
{
    if (are_vectors(picture, name)) {
        Attributes attributes = std::move(picture.attributes);
        set_value(attributes, kCoding, "0..1");
        picture = encoded_vectors(picture);
        picture.attributes = std::move(attributes);
        observer.note(name, {"its normals are -1 to 1 and are encoded as 0 to 1"});
    }
}

void note_unlike_its_name(std::string const& file, KindGuess const& guess, Observer& observer)
{
    NameEnding const* const ending = ending_of_name(file);
    if (ending != nullptr && ending->kind && *ending->kind != guess.kind) {
        bool const normals = guess.kind == Kind::kNormalMap;
        observer.note(file,
                      {fmt::format("its name ends in {}, as those of {} maps do, but {}: it is taken for a "
                                   "{} map",
                                   ending->text, normals ? "height" : "normal", guess.reason,
                                   normals ? "normal" : "height")});
    }
}

void note_normals_as_heights(std::string const& file, KindGuess const& guess, Observer& observer)
{
    if (guess.kind == Kind::kNormalMap) {
        observer.note(file,
                      {fmt::format("this looks like a normal map ({}); its brightness is taken for heights",
                                   guess.reason)});
    }
}

DecodedImage decode_input(Source const& source, Observer& observer)
{
    observer.begin(Phase::kReading, source.name);
    AddressSpaceLimit const limit(kProgram + kBytesPerTexel * source.max_texels);
    return {source.file, source.name, source.max_texels};
}

PreparedInput prepare_input(Source const& source, Observer& observer)
{
    return prepare_image(decode_input(source, observer), source, observer);
}

PreparedInput prepare_image(DecodedImage image, Source const& source, Observer& observer)
{
    note_conversion(image, source, observer);
    for (std::string const& note : image.notes()) {
        observer.note(source.name, {note});
    }
    PreparedInput input{image.width(),        image.height(),        image.has_alpha(), image.description(),
                        image.picture().type, KindGuess{Kind{}, ""}, Picture{}};
    input.picture =
        image.picture().channels < 3 ? image.to_picture(input.has_alpha) : image.release_picture();
    end_if_stopping(observer);
    input.guess = guess_kind(input.picture, source.file);
    return input;
}

} // namespace umbrixlib::toolkit
