// SPDX-License-Identifier: MIT
#include "commands/list/list_show_command.h"

#include "options/list_argument.h"
#include "options/setting_options.h"
#include "terminal/say.h"
#include "toolkit/lists/list_file.h"

#include <charconv>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrix_cli {

namespace {

/// The double that is written as short as @p value is: 0.05 and not 0.05000000074505806.
double as_written(float value)
{
    std::string const text = fmt::format("{}", value);
    double result = static_cast<double>(value);
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

template <typename T>
nlohmann::json to_json_value(T value)
{
    if constexpr (std::is_same_v<T, float>) {
        return as_written(value); // what is not finite comes out as null
    } else if constexpr (std::is_enum_v<T>) {
        return static_cast<int>(value);
    } else {
        return value;
    }
}

#define UMBRIX_ADD(type, name, offset) fields[#name] = to_json_value(record.name);

nlohmann::ordered_json fields_of(n_layer const& record)
{
    nlohmann::ordered_json fields{{"filename", record.filename}, {"name", record.name}};
    UMBRIX_LAYER_FIELDS(UMBRIX_ADD)
    return fields;
}

nlohmann::ordered_json fields_of(umbrix_node const& record, int number)
{
    nlohmann::ordered_json fields{
        {"job", number}, {"filename", record.filename}, {"search_str", record.search_str}};
    UMBRIX_DATA_FIELDS(UMBRIX_ADD, UMBRIX_ADD)
    fields["layers"] = nlohmann::ordered_json::array();
    for (auto const* each = record.layers.head; each != nullptr; each = each->next) {
        fields["layers"].push_back(fields_of(each->data));
    }
    return fields;
}

#undef UMBRIX_ADD

void print_json(std::string const& file, umbrix_list const& list)
{
    nlohmann::ordered_json jobs = nlohmann::ordered_json::array();
    int number = 0;
    for (auto const* each = list.items.head; each != nullptr; each = each->next) {
        jobs.push_back(fields_of(each->data, ++number));
    }
    nlohmann::ordered_json const all{{"file", file}, {"jobs", jobs}};
    say_json(all, 2);
}

/// What goes into the map.
char const* content_of(umbrix_data const& job)
{
    bool const light = !job.no_normal || job.generate_normal;
    bool const occlusion = job.calc_type == calc_type_light_occlusion || job.calc_type == calc_type_occlusion;
    if (light) {
        return occlusion ? "light and occlusion" : "light";
    }
    return occlusion ? "occlusion" : "neither";
}

std::string source_of(umbrix_node const& job)
{
    return job.search_str.empty() ? job.filename : fmt::format("{} ({})", job.filename, job.search_str);
}

void print_table(std::string const& file, umbrix_list const& list)
{
    say("{}: {}", file, count_of_jobs(list.items.count));
    if (list.items.count == 0) {
        return;
    }
    constexpr char const* kRow = "{:>5}  {:6}  {:19}  {:10}  {:>5}  {:>7}  {:>8}  {:>8}  {:>6}  {}";
    say(kRow, "job", "input", "map of", "mode", "rays", "radius", "h-scale", "n-scale", "layers", "source");
    int number = 0;
    for (auto const* each = list.items.head; each != nullptr; each = each->next) {
        umbrix_node const& job = each->data;
        say(kRow, ++number, job.height_map ? "height" : "normal", content_of(job),
            name_of_mode(job.UmbrixMode), job.rays, fmt::format("{:.4g}", job.radius),
            fmt::format("{:.4g}", job.h_scale), fmt::format("{:.4g}", job.n_scale), job.layers.count,
            source_of(job));
    }
}

} // namespace

void ListShowCommand::declare(CLI::App& command)
{
    declare_list(command, file_);
    auto* const json =
        command.add_flag("--json", json_, "Write one JSON object with every field of every job instead");
    command.add_flag("--print0", print0_, "Write the sources' names alone, each with a zero byte behind it")
        ->excludes(json);
}

void ListShowCommand::run(Interrupts const& /*interrupts*/)
{
    umbrix_list list;
    read_list(file_, list);
    if (print0_) {
        for (auto const* each = list.items.head; each != nullptr; each = each->next) {
            put_name(each->data.filename);
        }
    } else if (json_) {
        print_json(file_, list);
    } else {
        print_table(file_, list);
    }
}

} // namespace umbrix_cli
