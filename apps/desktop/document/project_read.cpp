// SPDX-License-Identifier: MIT
#include "document/project_file.h"
#include "document/project_names.h"
#include "toolkit/base/failure.h"
#include "toolkit/base/suggestion.h"
#include "toolkit/files/preflight.h"
#include "toolkit/settings/preset.h"
#include "toolkit/settings/setting_table.h"
#include "toolkit/settings/setting_text.h"
#include "toolkit/settings/toml_depth.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>
#include <toml++/toml.h>

namespace umbrix_desktop {

namespace {

namespace fs = std::filesystem;
using toolkit::Failure;
using toolkit::Fault;

constexpr std::uintmax_t kLargestFile = std::uintmax_t{16} << 20U;
constexpr std::size_t kDeepest = 16;
constexpr double kAnyNumber = 1e9;

/// The keys of one table, each asked for once. One that nobody asks for is at fault.
class ProjectTable {
public:
    /// @param place What messages put before a key: "brick.toml: settings.".
    ProjectTable(toml::table const& table, std::string place, fs::path const& folder)
        : table_(table), place_(std::move(place)), folder_(folder)
    {
    }

    void text(std::string_view key, std::string& value)
    {
        if (toml::node const* const node = find(key)) {
            value = text_in(key, *node);
        }
    }

    /// A name that counts from the folder if it is relative.
    void file(std::string_view key, std::string& value)
    {
        text(key, value);
        if (!value.empty()) {
            value = (folder_ / value).string();
        }
    }

    void flag(std::string_view key, bool& value)
    {
        if (toml::node const* const node = find(key)) {
            std::optional<bool> const read = node->value_exact<bool>();
            if (!read) {
                refuse(key, *node, "it is neither true nor false", "give one of these, without quotes");
            }
            value = *read;
        }
    }

    template <typename Number>
    void number(std::string_view key, Number& value, double minimum = -kAnyNumber,
                double maximum = kAnyNumber)
    {
        if (toml::node const* const node = find(key)) {
            value = static_cast<Number>(number_in(key, *node, minimum, maximum));
        }
    }

    template <typename Choice>
    void choice(std::string_view key, std::span<char const* const> names, Choice& value)
    {
        if (toml::node const* const node = find(key)) {
            value = static_cast<Choice>(place_in(key, *node, names));
        }
    }

    /// The node of @p key, or null.
    toml::node const* find(std::string_view key)
    {
        known_.push_back(key);
        return table_.get(key);
    }

    /// The table of @p key, or null.
    toml::table const* table(std::string_view key)
    {
        toml::node const* const node = find(key);
        if (node != nullptr && !node->is_table()) {
            refuse(key, *node, "it is no table", fmt::format("begin it with [{}]", key));
        }
        return node != nullptr ? node->as_table() : nullptr;
    }

    ProjectTable inner(std::string_view key, toml::table const& table) const
    {
        return {table, fmt::format("{}{}.", place_, key), folder_};
    }

    std::string text_in(std::string_view key, toml::node const& node) const
    {
        auto const read = node.value_exact<std::string>();
        if (!read) {
            refuse(key, node, "it is not a text in quotes", "give one");
        }
        return *read;
    }

    double number_in(std::string_view key, toml::node const& node, double minimum, double maximum) const
    {
        std::optional<double> const read = node.is_number() ? node.value<double>() : std::nullopt;
        bool const good = read && *read >= minimum && *read <= maximum;
        if (!good) {
            refuse(key, node, read ? fmt::format("{} is out of range", *read) : "it is not a number",
                   fmt::format("give {} to {}", minimum, maximum));
        }
        return *read;
    }

    [[noreturn]] void refuse(std::string_view key, toml::node const& node, std::string const& what,
                             std::string const& remedy, Fault fault = Fault::kWrongValue) const
    {
        throw Failure(fault, fmt::format("{}{} (line {})", place_, key, node.source().begin.line), what,
                      remedy);
    }

    /// A Failure if there is a key that nobody asked for.
    void refuse_others() const
    {
        for (auto const& [key, node] : table_) {
            if (std::ranges::find(known_, key.str()) == known_.end()) {
                std::string_view const meant = toolkit::meant_by(key.str(), known_);
                refuse(key.str(), node, "there is no such key",
                       meant.empty() ? "" : fmt::format("perhaps {} is meant", meant), Fault::kUnknownKey);
            }
        }
    }

private:
    std::size_t place_in(std::string_view key, toml::node const& node,
                         std::span<char const* const> names) const
    {
        std::string const remedy = fmt::format("give \"{}\"", fmt::join(names, "\", \""));
        auto const word = node.value_exact<std::string>();
        auto const found = word ? std::ranges::find(names, *word) : names.end();
        if (found == names.end()) {
            refuse(key, node, "it is no such word", remedy);
        }
        return static_cast<std::size_t>(found - names.begin());
    }

    toml::table const& table_;
    std::string place_;
    fs::path folder_;
    std::vector<std::string_view> known_;
};

/// The value of a setting as one would type it.
std::string typed(toml::node const& node)
{
    if (auto const flag = node.value_exact<bool>()) {
        return *flag ? "true" : "false";
    }
    if (auto const word = node.value_exact<std::string>()) {
        return *word;
    }
    auto const number = node.is_number() ? node.value<double>() : std::nullopt;
    return number ? fmt::format("{}", *number) : "";
}

void read_settings(ProjectTable table, toolkit::Settings& settings)
{
    std::vector<std::string> keys; // outlive the table's look at all
    for (toolkit::SettingRow const& row : toolkit::setting_table()) {
        keys.push_back(toolkit::preset_key(row));
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (toml::node const* const node = table.find(keys[i])) {
            try {
                toolkit::set_from_text(toolkit::setting_table()[i], settings, typed(*node));
            } catch (Failure const& failure) {
                table.refuse(keys[i], *node, failure.what(), failure.remedy);
            }
        }
    }
    table.refuse_others();
}

void read_lighting(ProjectTable table, Lighting& lighting)
{
    table.number("azimuth", lighting.light.azimuth_degrees);
    table.number("elevation", lighting.light.elevation_degrees, -90, 90);
    table.number("exposure", lighting.exposure);
    table.number("ambient", lighting.ambient);
    table.choice("weights", kWeightNames, lighting.weights);
    table.file("albedo", lighting.albedo);
    table.refuse_others();
}

void read_edges(ProjectTable& table, toolkit::StackLayer& layer)
{
    toml::node const* const node = table.find("edges");
    if (node == nullptr) {
        return;
    }
    toml::array const* const pair = node->as_array();
    if (pair == nullptr || pair->size() != 2) {
        table.refuse("edges", *node, "it is not a pair of numbers", "give [convex, concave]");
    }
    layer.edge_a = static_cast<float>(table.number_in("edges", (*pair)[0], -kAnyNumber, kAnyNumber));
    layer.edge_b = static_cast<float>(table.number_in("edges", (*pair)[1], -kAnyNumber, kAnyNumber));
}

void read_n_scale(ProjectTable& table, toolkit::StackLayer& layer)
{
    toml::node const* const node = table.find("n_scale");
    if (node != nullptr && node->value_exact<std::string>() != kNoScale) {
        layer.n_scale = static_cast<float>(table.number_in("n_scale", *node, -kAnyNumber, kAnyNumber));
    }
}

void read_layer(ProjectTable table, Layers& layers)
{
    toolkit::StackLayer layer;
    bool shown = true;
    table.text("label", layer.label);
    table.file("file", layer.file);
    table.choice("kind", kLayerKinds, layer.is_normal_map);
    table.choice("blend", kBlendWords, layer.blend);
    table.number("opacity", layer.opacity);
    read_n_scale(table, layer);
    table.number("detail", layer.detail);
    table.number("gaussian", layer.gaussian);
    table.number("depth", layer.depth);
    read_edges(table, layer);
    table.flag("shown", shown);
    table.refuse_others();
    layers.description.layers.push_back(std::move(layer));
    layers.shown.push_back(shown);
}

void read_layers(ProjectTable table, Layers& layers)
{
    table.number("normal_scale", layers.description.normal_scale);
    int depth = 0;
    table.choice("save_depth", kSaveDepths, depth);
    if (depth > 0) {
        layers.description.save_depth = static_cast<umbrixlib::SampleType>(depth - 1);
    }
    if (toml::node const* const node = table.find("layer")) {
        toml::array const* const all = node->as_array();
        if (all == nullptr ||
            !std::ranges::all_of(*all, [](toml::node const& each) { return each.is_table(); })) {
            table.refuse("layer", *node, "it is not a list of tables",
                         "begin each layer with [[layers.layer]]");
        }
        for (toml::node const& each : *all) {
            read_layer(table.inner(fmt::format("layer {}", layers.shown.size() + 1), *each.as_table()),
                       layers);
        }
    }
    table.refuse_others();
}

void read_view(ProjectTable table, View& view)
{
    table.choice("left", kShowNames, view.left);
    table.choice("right", kShowNames, view.right);
    table.choice("arrangement", kArrangementNames, view.arrangement);
    table.number("split", view.split, 0, 1);
    table.choice("channel", kChannelNames, view.channel);
    table.number("zoom", view.zoom, 0);
    table.number("centre_x", view.centre_x);
    table.number("centre_y", view.centre_y);
    table.number("tiles", view.tiles, 1, 1000);
    table.refuse_others();
}

toml::table parsed(std::string_view text, std::string const& subject)
{
    if (auto const line = toolkit::line_nested_deeper(text, kDeepest)) {
        throw Failure(Fault::kWrongValue, fmt::format("{} (line {})", subject, *line),
                      fmt::format("it nests more than {} levels deep", kDeepest));
    }
    try {
        return toml::parse(text);
    } catch (toml::parse_error const& error) {
        throw Failure(Fault::kWrongValue, fmt::format("{} (line {})", subject, error.source().begin.line),
                      fmt::format("it is no project file: {}", error.description()));
    }
}

} // namespace

Project project_in(std::string_view text, fs::path const& folder, std::string const& subject)
{
    toml::table const all = parsed(text, subject);
    ProjectTable table(all, fmt::format("{}: ", subject), folder);
    Project project;
    State& state = project.state;
    int version = 0;
    table.number("version", version, 0, 1e6);
    if (version != kProjectVersion) {
        throw Failure(Fault::kWrongValue, fmt::format("{}: version", subject),
                      version == 0 ? "it is no project file" : "it is of a newer version",
                      version == 0 ? "" : "open it with the program that saved it");
    }
    table.file("saved_as", project.saved_as);
    table.file("source", state.source);
    table.text("profile", state.profile);
    using Read = void (*)(ProjectTable, State&);
    constexpr std::pair<char const*, Read> kParts[] = {
        {"settings", [](ProjectTable part, State& into) { read_settings(std::move(part), into.settings); }},
        {"lighting", [](ProjectTable part, State& into) { read_lighting(std::move(part), into.lighting); }},
        {"layers", [](ProjectTable part, State& into) { read_layers(std::move(part), into.layers); }},
        {"view", [](ProjectTable part, State& into) { read_view(std::move(part), into.view); }},
    };
    for (auto const& [key, read] : kParts) {
        if (toml::table const* const part = table.table(key)) {
            read(table.inner(key, *part), state);
        }
    }
    table.refuse_others();
    return project;
}

Project read_project(fs::path const& file)
{
    toolkit::check_plain_file(file, "a project file");
    std::error_code error;
    if (fs::file_size(file, error) > kLargestFile) {
        throw Failure(Fault::kWrongValue, file.string(), "it is too large for a project file");
    }
    std::ifstream stream(file, std::ios::binary);
    std::string const text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream) {
        throw Failure(Fault::kUnreadable, file.string(), "it cannot be read");
    }
    return project_in(text, fs::absolute(file).parent_path(), file.string());
}

} // namespace umbrix_desktop
