// SPDX-License-Identifier: MIT
#include "capi/pictures_internal.h"

#include "capi/texels_internal.h"
#include "toolkit/base/failure.h"
#include "toolkit/files/preflight.h"
#include "toolkit/files/temporary.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/input_formats.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/tasks/methods/saved_picture.h"

#include <fmt/format.h>
#include <memory>
#include <utility>

using namespace umbrixlib::toolkit;

namespace umbrix_capi {

namespace {

/// What the attributes say of a kind that the caller knows.
char const* name_of_kind(umbrix_kind kind)
{
    constexpr char const* kNames[] = {"", "heights", "normals", "map"};
    return kNames[kind];
}

/// What pictures over memory of a known kind tell, so that tasks take them for that.
Attributes attributes_of_kind(umbrix_layout const& layout)
{
    if (layout.kind == UMBRIX_UNKNOWN) {
        return {};
    }
    Attributes attributes{{"umbrix", "picture"}, {"kind", name_of_kind(layout.kind)}};
    if (layout.kind == UMBRIX_NORMALS) {
        bool const is_float = layout.samples == UMBRIX_HALF || layout.samples == UMBRIX_FLOAT;
        set_value(attributes, "coding", is_float ? "-1..1" : "0..1");
    }
    return attributes;
}

} // namespace

DecodedFile decoded(umbrix_picture const* picture, char const* name)
{
    require(picture, name);
    if (picture->own.picture.texels() > 0) {
        return picture->own;
    }
    if (picture->texels == nullptr) {
        throw WrongArgument(fmt::format("{} has no texels", name));
    }
    DecodedFile file{fetch(picture->texels, picture->layout)};
    file.picture.kind = static_cast<PictureKind>(picture->layout.kind);
    file.picture.attributes =
        picture->attributes.empty() ? attributes_of_kind(picture->layout) : picture->attributes;
    return file;
}

PreparedInput prepared(umbrix_picture const* picture, char const* name, CallObserver& observer)
{
    DecodedFile file = decoded(picture, name);
    observer.check();
    PreparedInput input =
        prepare_image(DecodedImage(std::move(file)), {picture->name, picture->name, 0.0}, observer);
    observer.check();
    return input;
}

PictureKind known_kind(umbrix_picture const& picture)
{
    std::string const told = value_of(picture.attributes, "kind");
    for (umbrix_kind const kind : {UMBRIX_HEIGHTS, UMBRIX_NORMALS, UMBRIX_LIGHT}) {
        if (told == name_of_kind(kind)) {
            return static_cast<PictureKind>(kind);
        }
    }
    return static_cast<PictureKind>(picture.layout.kind);
}

PictureSize size_of(umbrix_picture const& picture)
{
    return {picture.layout.width, picture.layout.height};
}

void check_result(umbrix_picture const* result, char const* name, PictureSize size, int channels)
{
    require(result, name);
    if (result->texels == nullptr) {
        return;
    }
    umbrix_layout const& layout = result->layout;
    if (result->result == nullptr) {
        throw WrongArgument(fmt::format("{} is over memory that is read only", name));
    }
    if (layout.samples != UMBRIX_FLOAT) {
        throw WrongArgument(fmt::format("{} has samples that are no floats", name));
    }
    if (layout.width != size.width || layout.height != size.height || layout.channels != channels) {
        throw WrongArgument(fmt::format("{} is {} x {} of {} channels, and what is made {} x {} of {}", name,
                                        layout.width, layout.height, layout.channels, size.width, size.height,
                                        channels));
    }
}

void give(Picture made, std::string const& name, umbrix_picture& result)
{
    result.name = name;
    result.attributes = made.attributes;
    result.attribute_text = attribute_text(made.attributes);
    auto const kind = static_cast<umbrix_kind>(made.kind);
    if (result.result != nullptr) {
        store(made, result.result, result.layout);
        result.layout.kind = kind;
        return;
    }
    result.layout = umbrix_layout{
        0, made.width, made.height, made.channels, static_cast<umbrix_samples>(made.type), kind, 0, 0, 0};
    result.own = {std::move(made)};
}

namespace {

umbrix_code wrap(umbrix_context* context, void const* texels, void* result, umbrix_layout const* layout,
                 umbrix_picture** picture)
{
    return call(context, [&](CallObserver&) {
        require(texels, "texels");
        require(picture, "picture");
        auto made = std::make_unique<umbrix_picture>();
        made->layout = whole_layout(layout);
        made->texels = texels;
        made->result = result;
        *picture = made.release();
    });
}

Compression compression_of(umbrix_compression compression)
{
    constexpr Compression kAll[] = {Compression::kDefault, Compression::kFast, Compression::kSmall};
    return kAll[compression];
}

constexpr double kUsualTexels = 16384.0 * 16384.0;

umbrix_saving whole_saving(umbrix_saving const* given)
{
    umbrix_saving const saving =
        given == nullptr ? umbrix_saving{} : record_of(given, offsetof(umbrix_saving, rounding), "saving");
    auto const is_one = [](int value, int last) { return value >= 0 && value <= last; };
    if (!is_one(value_in(saving.depth), UMBRIX_DEPTH_FLOAT) ||
        !is_one(value_in(saving.rounding), UMBRIX_DITHER) ||
        !is_one(value_in(saving.compression), UMBRIX_COMPRESSION_SMALL)) {
        throw WrongArgument("saving has a value that is none of the constants");
    }
    return saving;
}

/// Depth of a file if none is asked for: heights that were made of normals lose too much in 8 bits.
std::optional<SampleType> depth_of(umbrix_saving const& saving, Picture const& picture,
                                   OutputFormat const& format)
{
    if (saving.depth != UMBRIX_DEPTH_USUAL) {
        return static_cast<SampleType>(saving.depth - UMBRIX_DEPTH_8);
    }
    if (picture.kind == PictureKind::kHeights && picture.type == SampleType::kFloat) {
        return nearest_depth(format, SampleType::kUint16);
    }
    return picture.type == SampleType::kFloat ? std::nullopt
                                              : std::optional(nearest_depth(format, picture.type));
}

void check_range(Picture const& floats, SavedAs const& as, std::string const& name)
{
    if (floats.kind != PictureKind::kHeights || !is_whole(as.depth)) {
        return;
    }
    auto const limits = std::ranges::minmax(floats.samples<float>());
    double const half_step = 0.5 / full_scale(SampleType::kUint8);
    if (static_cast<double>(limits.max) > 1.0 + half_step || static_cast<double>(limits.min) < -half_step) {
        throw Failure(Fault::kHeightsOutsideRange, name,
                      fmt::format("its heights are {:.6g} to {:.6g}, not 0 to 1", limits.min, limits.max),
                      fmt::format("{:.6g},{:.6g}", limits.min, limits.max));
    }
}

/// The picture in the samples of its file.
Picture in_file(Picture const& picture, SavedAs const& as, std::string const& name)
{
    if (picture.type != SampleType::kFloat) {
        Picture result = converted(picture, as);
        result.attributes = picture.attributes;
        return result;
    }
    check_range(picture, as, name);
    return saved_result(picture, as);
}

} // namespace

} // namespace umbrix_capi

using namespace umbrix_capi;

umbrix_code umbrix_picture_new(umbrix_context* context, umbrix_picture** picture)
{
    return call(context, [&](CallObserver&) {
        require(picture, "picture");
        *picture = std::make_unique<umbrix_picture>().release();
    });
}

umbrix_code umbrix_picture_wrap(umbrix_context* context, void const* texels, umbrix_layout const* layout,
                                umbrix_picture** picture)
{
    return wrap(context, texels, nullptr, layout, picture);
}

umbrix_code umbrix_picture_wrap_result(umbrix_context* context, void* texels, umbrix_layout const* layout,
                                       umbrix_picture** picture)
{
    return wrap(context, texels, texels, layout, picture);
}

umbrix_code umbrix_picture_read(umbrix_context* context, char const* file, double max_texels,
                                umbrix_picture** picture)
{
    return work(context, nullptr, [&](CallObserver& observer) {
        require(file, "file");
        require(picture, "picture");
        check_input(file);
        observer.begin(Phase::kReading, file);
        observer.check();
        DecodedImage image(file, file, max_texels > 0.0 ? max_texels : kUsualTexels);
        for (std::string const& note : image.notes()) {
            observer.note(file, {note});
        }
        auto made = std::make_unique<umbrix_picture>();
        std::string const format = image.format();
        give(image.release_picture(), file, *made);
        made->own.format = format;
        *picture = made.release();
    });
}

void umbrix_picture_free(umbrix_picture* picture)
{
    delete picture;
}

umbrix_code umbrix_picture_layout(umbrix_picture const* picture, umbrix_layout* layout)
{
    if (picture == nullptr) {
        return UMBRIX_WRONG_ARGUMENT;
    }
    return fill_record(layout, picture->layout) ? UMBRIX_OK : UMBRIX_WRONG_ARGUMENT;
}

umbrix_code umbrix_picture_copy(umbrix_context* context, umbrix_picture const* picture, void* texels,
                                umbrix_layout const* layout)
{
    return call(context, [&](CallObserver&) {
        require(texels, "texels");
        Picture const source = decoded(picture, "picture").picture;
        umbrix_layout const target = whole_layout(layout);
        if (target.width != source.width || target.height != source.height ||
            target.channels != source.channels) {
            throw WrongArgument(fmt::format(
                "layout: it is {} x {} of {} channels, and the picture {} x {} of {}", target.width,
                target.height, target.channels, source.width, source.height, source.channels));
        }
        auto const type = static_cast<SampleType>(target.samples);
        if (type != source.type && type != SampleType::kFloat) {
            throw WrongArgument("layout: its samples are neither those of the picture nor floats");
        }
        store(type == source.type ? source : in_floats(source), texels, target);
    });
}

char const* umbrix_picture_name(umbrix_picture const* picture)
{
    return picture != nullptr ? picture->name.c_str() : "";
}

umbrix_code umbrix_picture_set_name(umbrix_context* context, umbrix_picture* picture, char const* name)
{
    return call(context, [&](CallObserver&) {
        require(picture, "picture");
        require(name, "name");
        picture->name = name;
    });
}

char const* umbrix_picture_format(umbrix_picture const* picture)
{
    return picture != nullptr ? picture->own.format.c_str() : "";
}

char const* umbrix_picture_attributes(umbrix_picture const* picture)
{
    return picture != nullptr ? picture->attribute_text.c_str() : "";
}

umbrix_code umbrix_picture_set_attributes(umbrix_context* context, umbrix_picture* picture,
                                          char const* attributes)
{
    return call(context, [&](CallObserver&) {
        require(picture, "picture");
        require(attributes, "attributes");
        picture->attributes = parse_attributes(attributes);
        picture->attribute_text = attribute_text(picture->attributes);
        picture->own.picture.attributes = picture->attributes;
    });
}

umbrix_code umbrix_picture_write(umbrix_context* context, umbrix_picture const* picture, char const* file,
                                 umbrix_saving const* saving)
{
    return work(context, picture, [&](CallObserver& observer) {
        require(file, "file");
        umbrix_saving const wanted = whole_saving(saving);
        OutputFormat const* const format = output_format(file);
        if (format == nullptr) {
            throw Failure(Fault::kUnknownFormat, file, "its name tells no format that can be written",
                          fmt::format("give one that ends in {}", output_extensions()));
        }
        Picture source = decoded(picture, "picture").picture;
        source.kind = known_kind(*picture);
        Rounding const rounding = wanted.rounding == UMBRIX_NEAREST ? Rounding::kNearest : Rounding::kCut;
        Saving const how{depth_of(wanted, source, *format), rounding, wanted.rounding == UMBRIX_DITHER,
                         compression_of(wanted.compression)};
        SavedAs const as = saved_as(how, *format, source.kind, file);
        check_size(*format, file, source.width, source.height);
        auto const target = check_output_file(file, wanted.overwrite != 0);
        Picture const stored = in_file(source, as, file);
        source = {};
        OutputFile output(target, format->extension);
        write_picture(output.temporary(), *format, file, stored, how.compression, observer);
        observer.check();
        output.move_into_place(wanted.overwrite != 0);
    });
}

int umbrix_is_picture_name(char const* file)
{
    try {
        return file != nullptr && is_called_like_a_picture(file) ? 1 : 0;
    } catch (std::exception const&) {
        return 0;
    }
}

int umbrix_kind_of_name(char const* file)
{
    try {
        NameEnding const* const ending = file != nullptr ? ending_of_name(file) : nullptr;
        if (ending == nullptr) {
            return UMBRIX_UNKNOWN;
        }
        return !ending->kind ? -1 : *ending->kind == Kind::kHeightMap ? UMBRIX_HEIGHTS : UMBRIX_NORMALS;
    } catch (std::exception const&) {
        return UMBRIX_UNKNOWN;
    }
}

umbrix_code umbrix_result_name(umbrix_context* context, char const* file, char const* suffix,
                               char const* extension, char const** name)
{
    return call(context, [&](CallObserver&) {
        require(file, "file");
        require(suffix, "suffix");
        require(name, "name");
        context->answer = default_output(file, suffix, extension != nullptr ? extension : "").string();
        *name = context->answer.c_str();
    });
}
