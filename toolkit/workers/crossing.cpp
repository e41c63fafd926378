// SPDX-License-Identifier: MIT
#include "toolkit/workers/crossing_internal.h"

#include "toolkit/lists/list_job.h"
#include "toolkit/settings/setting_table.h"

#include <array>
#include <cstring>
#include <nlohmann/json.hpp>
#include <tuple>
#include <type_traits>

namespace umbrixlib::toolkit {

namespace {

using nlohmann::json;

/// The fields of a record: pairs of a name and a member. They name what crosses, once for both directions.
template <typename Record>
struct FieldsOf;

#define UMBRIX_FIELDS(record, ...)                                                                           \
    template <>                                                                                              \
    struct FieldsOf<record> {                                                                                \
        using R = record;                                                                                    \
        static constexpr auto kAll = std::make_tuple(__VA_ARGS__);                                           \
    };
#define UMBRIX_FIELD(name) std::pair(#name, &R::name)

UMBRIX_FIELDS(Saving, UMBRIX_FIELD(depth), UMBRIX_FIELD(rounding), UMBRIX_FIELD(dither),
              UMBRIX_FIELD(compression))
UMBRIX_FIELDS(Output, UMBRIX_FIELD(file), UMBRIX_FIELD(name), UMBRIX_FIELD(saving))
UMBRIX_FIELDS(JobFiles, UMBRIX_FIELD(input), UMBRIX_FIELD(output), UMBRIX_FIELD(max_texels))
UMBRIX_FIELDS(Graphics, UMBRIX_FIELD(device), UMBRIX_FIELD(match_cpu))
UMBRIX_FIELDS(Light, UMBRIX_FIELD(azimuth_degrees), UMBRIX_FIELD(elevation_degrees))
UMBRIX_FIELDS(Relighting, UMBRIX_FIELD(mode), UMBRIX_FIELD(exposure), UMBRIX_FIELD(weights),
              UMBRIX_FIELD(ambient))
UMBRIX_FIELDS(StackLayer, UMBRIX_FIELD(label), UMBRIX_FIELD(file), UMBRIX_FIELD(is_normal_map),
              UMBRIX_FIELD(blend), UMBRIX_FIELD(opacity), UMBRIX_FIELD(n_scale), UMBRIX_FIELD(detail),
              UMBRIX_FIELD(gaussian), UMBRIX_FIELD(depth), UMBRIX_FIELD(edge_a), UMBRIX_FIELD(edge_b))
UMBRIX_FIELDS(StackDescription, UMBRIX_FIELD(normal_scale), UMBRIX_FIELD(layers), UMBRIX_FIELD(save_depth))

UMBRIX_FIELDS(HeightRange, UMBRIX_FIELD(how), UMBRIX_FIELD(low), UMBRIX_FIELD(high))
UMBRIX_FIELDS(InvalidTexels, UMBRIX_FIELD(replacement))
UMBRIX_FIELDS(HeightReading, UMBRIX_FIELD(channel), UMBRIX_FIELD(invalid), UMBRIX_FIELD(range),
              UMBRIX_FIELD(invert))

UMBRIX_FIELDS(MapJob, UMBRIX_FIELD(files), UMBRIX_FIELD(settings), UMBRIX_FIELD(kind), UMBRIX_FIELD(normal_y),
              UMBRIX_FIELD(graphics), UMBRIX_FIELD(compare_cpu))
UMBRIX_FIELDS(NormalJob, UMBRIX_FIELD(files), UMBRIX_FIELD(settings), UMBRIX_FIELD(normal_y))
UMBRIX_FIELDS(HeightJob, UMBRIX_FIELD(files), UMBRIX_FIELD(settings), UMBRIX_FIELD(normal_y),
              UMBRIX_FIELD(range))
UMBRIX_FIELDS(CurvatureJob, UMBRIX_FIELD(files), UMBRIX_FIELD(settings), UMBRIX_FIELD(kind),
              UMBRIX_FIELD(normal_y))
UMBRIX_FIELDS(BentJob, UMBRIX_FIELD(files), UMBRIX_FIELD(occlusion), UMBRIX_FIELD(settings),
              UMBRIX_FIELD(normal_y), UMBRIX_FIELD(occlusion_alone))
UMBRIX_FIELDS(HorizonJob, UMBRIX_FIELD(files), UMBRIX_FIELD(later), UMBRIX_FIELD(settings),
              UMBRIX_FIELD(later_alone))
UMBRIX_FIELDS(RelightJob, UMBRIX_FIELD(files), UMBRIX_FIELD(light), UMBRIX_FIELD(look), UMBRIX_FIELD(albedo),
              UMBRIX_FIELD(mode_is_given), UMBRIX_FIELD(force), UMBRIX_FIELD(directions), UMBRIX_FIELD(cell),
              UMBRIX_FIELD(seconds))
UMBRIX_FIELDS(ViewJob, UMBRIX_FIELD(files), UMBRIX_FIELD(albedo), UMBRIX_FIELD(title), UMBRIX_FIELD(mode),
              UMBRIX_FIELD(mode_is_given), UMBRIX_FIELD(force))
UMBRIX_FIELDS(ConvertJob, UMBRIX_FIELD(files), UMBRIX_FIELD(channel), UMBRIX_FIELD(reading))
UMBRIX_FIELDS(ExportJob, UMBRIX_FIELD(files), UMBRIX_FIELD(kind), UMBRIX_FIELD(format), UMBRIX_FIELD(levels),
              UMBRIX_FIELD(channel), UMBRIX_FIELD(reading))
UMBRIX_FIELDS(PackedChannel, UMBRIX_FIELD(file), UMBRIX_FIELD(from), UMBRIX_FIELD(invert),
              UMBRIX_FIELD(value))
UMBRIX_FIELDS(PackJob, UMBRIX_FIELD(files), UMBRIX_FIELD(channels))
UMBRIX_FIELDS(InfoJob, UMBRIX_FIELD(input), UMBRIX_FIELD(max_texels), UMBRIX_FIELD(range))
UMBRIX_FIELDS(CheckJob, UMBRIX_FIELD(files), UMBRIX_FIELD(kind), UMBRIX_FIELD(normal_y), UMBRIX_FIELD(mode),
              UMBRIX_FIELD(h_tile), UMBRIX_FIELD(v_tile))
UMBRIX_FIELDS(StackJob, UMBRIX_FIELD(file), UMBRIX_FIELD(description), UMBRIX_FIELD(normals),
              UMBRIX_FIELD(heights), UMBRIX_FIELD(map), UMBRIX_FIELD(map_from_layers),
              UMBRIX_FIELD(max_texels), UMBRIX_FIELD(settings), UMBRIX_FIELD(graphics))
UMBRIX_FIELDS(FitJob, UMBRIX_FIELD(heights), UMBRIX_FIELD(normals), UMBRIX_FIELD(max_texels),
              UMBRIX_FIELD(settings), UMBRIX_FIELD(fit_gaussian))
UMBRIX_FIELDS(DevicesJob)
UMBRIX_FIELDS(FolderJob, UMBRIX_FIELD(folder), UMBRIX_FIELD(search), UMBRIX_FIELD(recurse),
              UMBRIX_FIELD(settings), UMBRIX_FIELD(kind), UMBRIX_FIELD(graphics))

UMBRIX_FIELDS(DecodeJob, UMBRIX_FIELD(files))

UMBRIX_FIELDS(DeviceReport, UMBRIX_FIELD(name), UMBRIX_FIELD(backend))
UMBRIX_FIELDS(MapReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(kind), UMBRIX_FIELD(guessed),
              UMBRIX_FIELD(reason), UMBRIX_FIELD(green), UMBRIX_FIELD(green_by_name), UMBRIX_FIELD(n_scale),
              UMBRIX_FIELD(heights), UMBRIX_FIELD(device), UMBRIX_FIELD(difference))
UMBRIX_FIELDS(NormalReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(n_scale),
              UMBRIX_FIELD(heights))
UMBRIX_FIELDS(HeightReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(green),
              UMBRIX_FIELD(n_scale), UMBRIX_FIELD(reading), UMBRIX_FIELD(low), UMBRIX_FIELD(high),
              UMBRIX_FIELD(range), UMBRIX_FIELD(stripes_x_unseen), UMBRIX_FIELD(stripes_y_unseen))
UMBRIX_FIELDS(CurvatureReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(kind),
              UMBRIX_FIELD(guessed), UMBRIX_FIELD(reason), UMBRIX_FIELD(green), UMBRIX_FIELD(reading),
              UMBRIX_FIELD(n_scale), UMBRIX_FIELD(heights), UMBRIX_FIELD(radius))
UMBRIX_FIELDS(BentReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(h_scale),
              UMBRIX_FIELD(heights), UMBRIX_FIELD(open))
UMBRIX_FIELDS(HorizonReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(h_scale),
              UMBRIX_FIELD(heights))
UMBRIX_FIELDS(RelightReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height))
UMBRIX_FIELDS(ViewReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(bytes))
UMBRIX_FIELDS(ConvertReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(from), UMBRIX_FIELD(to),
              UMBRIX_FIELD(heights))
UMBRIX_FIELDS(PackReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(to))
UMBRIX_FIELDS(ChannelRange, UMBRIX_FIELD(name), UMBRIX_FIELD(minimum), UMBRIX_FIELD(maximum),
              UMBRIX_FIELD(mean), UMBRIX_FIELD(levels), UMBRIX_FIELD(invalid))
UMBRIX_FIELDS(Attribute, UMBRIX_FIELD(key), UMBRIX_FIELD(value))
UMBRIX_FIELDS(ExportReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(taken_for),
              UMBRIX_FIELD(because), UMBRIX_FIELD(channels), UMBRIX_FIELD(form), UMBRIX_FIELD(levels),
              UMBRIX_FIELD(bytes), UMBRIX_FIELD(heights))
UMBRIX_FIELDS(InfoReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(format),
              UMBRIX_FIELD(bits_per_channel), UMBRIX_FIELD(pixel), UMBRIX_FIELD(only_header),
              UMBRIX_FIELD(channels), UMBRIX_FIELD(has_8_bit_steps), UMBRIX_FIELD(taken_for),
              UMBRIX_FIELD(because), UMBRIX_FIELD(notes), UMBRIX_FIELD(attributes))
UMBRIX_FIELDS(TexelPlace, UMBRIX_FIELD(x), UMBRIX_FIELD(y))
UMBRIX_FIELDS(Finding, UMBRIX_FIELD(name), UMBRIX_FIELD(text), UMBRIX_FIELD(texels), UMBRIX_FIELD(strength),
              UMBRIX_FIELD(first), UMBRIX_FIELD(fix))
UMBRIX_FIELDS(CheckReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(taken_for),
              UMBRIX_FIELD(because), UMBRIX_FIELD(green), UMBRIX_FIELD(green_times), UMBRIX_FIELD(mode),
              UMBRIX_FIELD(findings), UMBRIX_FIELD(mended))
UMBRIX_FIELDS(StackReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(layers))
UMBRIX_FIELDS(FitReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(relief),
              UMBRIX_FIELD(n_scale), UMBRIX_FIELD(gaussian), UMBRIX_FIELD(inverted), UMBRIX_FIELD(green),
              UMBRIX_FIELD(other_heights_mean_angle_degrees), UMBRIX_FIELD(mean_angle_degrees),
              UMBRIX_FIELD(other_green_mean_angle_degrees), UMBRIX_FIELD(flat_mean_angle_degrees),
              UMBRIX_FIELD(beats_flat))
UMBRIX_FIELDS(DevicesReport::Device, UMBRIX_FIELD(number), UMBRIX_FIELD(name), UMBRIX_FIELD(backend),
              UMBRIX_FIELD(is_default))
UMBRIX_FIELDS(DevicesReport, UMBRIX_FIELD(devices), UMBRIX_FIELD(last_error))
UMBRIX_FIELDS(ListReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(kind))
UMBRIX_FIELDS(FolderReport, UMBRIX_FIELD(ran_through))
UMBRIX_FIELDS(DecodeReport, UMBRIX_FIELD(width), UMBRIX_FIELD(height), UMBRIX_FIELD(channels),
              UMBRIX_FIELD(type), UMBRIX_FIELD(picture_kind), UMBRIX_FIELD(palette), UMBRIX_FIELD(format),
              UMBRIX_FIELD(notes), UMBRIX_FIELD(attributes))

UMBRIX_FIELDS(PhaseEvent, UMBRIX_FIELD(phase), UMBRIX_FIELD(file))
UMBRIX_FIELDS(StageEvent, UMBRIX_FIELD(name), UMBRIX_FIELD(permille))
UMBRIX_FIELDS(Note, UMBRIX_FIELD(text), UMBRIX_FIELD(kind), UMBRIX_FIELD(detail))
UMBRIX_FIELDS(NoteEvent, UMBRIX_FIELD(file), UMBRIX_FIELD(note))

#undef UMBRIX_FIELD
#undef UMBRIX_FIELDS

/// A value as JSON and back; one form a shape of type.
template <typename T>
struct Crossing {
    static json out(T const& value)
    {
        if constexpr (std::is_enum_v<T>) {
            return static_cast<int>(value);
        } else if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, std::string>) {
            return value;
        } else {
            json fields = json::object();
            std::apply(
                [&](auto const&... field) {
                    ((fields[field.first] = Crossing<std::remove_cvref_t<decltype(value.*field.second)>>::out(
                          value.*field.second)),
                     ...);
                },
                FieldsOf<T>::kAll);
            return fields;
        }
    }

    static T in(json const& from)
    {
        if constexpr (std::is_enum_v<T>) {
            return static_cast<T>(from.get<int>());
        } else if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, std::string>) {
            return from.get<T>();
        } else {
            T value{};
            std::apply(
                [&](auto const&... field) {
                    ((value.*field.second = Crossing<std::remove_cvref_t<decltype(value.*field.second)>>::in(
                          from.at(field.first))),
                     ...);
                },
                FieldsOf<T>::kAll);
            return value;
        }
    }
};

template <typename T>
struct Crossing<std::optional<T>> {
    static json out(std::optional<T> const& value)
    {
        return value ? Crossing<T>::out(*value) : json(nullptr);
    }
    static std::optional<T> in(json const& from)
    {
        return from.is_null() ? std::nullopt : std::optional(Crossing<T>::in(from));
    }
};

template <typename T>
struct Crossing<std::vector<T>> {
    static json out(std::vector<T> const& values)
    {
        json all = json::array();
        for (T const& value : values) {
            all.push_back(Crossing<T>::out(value));
        }
        return all;
    }
    static std::vector<T> in(json const& from)
    {
        std::vector<T> values;
        for (json const& each : from) {
            values.push_back(Crossing<T>::in(each));
        }
        return values;
    }
};

/// The place of the alternative, and its value.
template <typename... All>
struct Crossing<std::variant<All...>> {
    using Variant = std::variant<All...>;

    static json out(Variant const& value)
    {
        return std::visit(
            [&](auto const& each) {
                return json{value.index(), Crossing<std::remove_cvref_t<decltype(each)>>::out(each)};
            },
            value);
    }
    static Variant in(json const& from)
    {
        constexpr std::array<Variant (*)(json const&), sizeof...(All)> kForms{
            [](json const& each) -> Variant { return Crossing<All>::in(each); }...};
        return kForms.at(from.at(0).get<std::size_t>())(from.at(1));
    }
};

template <>
struct Crossing<Settings> {
    static json out(Settings const& settings)
    {
        json fields;
        for (SettingRow const& row : setting_table()) {
            std::visit(
                [&]<typename T>(T Settings::*field) { fields[row.name] = Crossing<T>::out(settings.*field); },
                row.field);
        }
        return fields;
    }
    static Settings in(json const& from)
    {
        Settings settings = kDefaults;
        for (SettingRow const& row : setting_table()) {
            std::visit(
                [&]<typename T>(T Settings::*field) { settings.*field = Crossing<T>::in(from.at(row.name)); },
                row.field);
        }
        return settings;
    }
};

template <>
struct Crossing<ListJob> {
    static json out(ListJob const& job)
    {
        return {{"files", Crossing<JobFiles>::out(job.files)},
                {"job", json::binary(pack_list_job(node_of(job.data, job.layers)))},
                {"graphics", Crossing<Graphics>::out(job.graphics)},
                {"reading", Crossing<HeightReading>::out(job.reading)}};
    }
    static ListJob in(json const& from)
    {
        umbrix_node const node = unpack_list_job(from.at("job").get_binary());
        return {Crossing<JobFiles>::in(from.at("files")), node, layers_of(node),
                Crossing<Graphics>::in(from.at("graphics")), Crossing<HeightReading>::in(from.at("reading"))};
    }
};

template <>
struct Crossing<Failure> {
    static json out(Failure const& failure)
    {
        return {{"fault", static_cast<int>(failure.fault)},
                {"subject", failure.subject},
                {"what", failure.what()},
                {"remedy", failure.remedy}};
    }
    static Failure in(json const& from)
    {
        return {static_cast<Fault>(from.at("fault").get<int>()), from.at("subject"),
                from.at("what").get<std::string>(), from.at("remedy")};
    }
};

using Size = std::uint32_t;

template <typename T>
std::string packed(T const& value)
{
    std::string message(sizeof(Size), '\0');
    json::to_cbor(Crossing<T>::out(value), message);
    auto const size = static_cast<Size>(message.size() - sizeof(Size));
    std::memcpy(message.data(), &size, sizeof size);
    return message;
}

template <typename T>
T unpacked(std::string_view message)
{
    try {
        return Crossing<T>::in(json::from_cbor(message));
    } catch (json::exception const& error) {
        throw Garbled(error.what());
    } catch (std::out_of_range const& error) {
        throw Garbled(error.what());
    }
}

} // namespace

std::string pack(Job const& job)
{
    return packed(job);
}

std::string pack(Event const& event)
{
    return packed(event);
}

Job unpack_job(std::string_view message)
{
    return unpacked<Job>(message);
}

Event unpack_event(std::string_view message)
{
    return unpacked<Event>(message);
}

std::optional<std::string> take_message(std::string& bytes, std::size_t longest)
{
    Size size = 0;
    if (bytes.size() < sizeof size) {
        return std::nullopt;
    }
    std::memcpy(&size, bytes.data(), sizeof size);
    if (size > longest) {
        throw Garbled("it is too long");
    }
    if (bytes.size() - sizeof size < size) {
        return std::nullopt;
    }
    std::string message = bytes.substr(sizeof size, size);
    bytes.erase(0, sizeof size + size);
    return message;
}

} // namespace umbrixlib::toolkit
