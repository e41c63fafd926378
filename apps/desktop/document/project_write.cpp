// SPDX-License-Identifier: MIT
#include "document/project_file.h"
#include "document/project_names.h"
#include "toolkit/base/failure.h"
#include "toolkit/base/utf8.h"
#include "toolkit/files/text_file.h"
#include "toolkit/settings/preset.h"
#include "toolkit/settings/setting_table.h"

#include <fmt/format.h>

namespace umbrix_desktop {

namespace {

namespace fs = std::filesystem;

/// Collects the lines of a project.
class ProjectWriter {
public:
    explicit ProjectWriter(fs::path const& folder) : folder_(folder.string()) {}

    void begin(std::string_view head) { text_ += fmt::format("\n{}\n", head); }

    void line(std::string_view key, std::string_view value) { text_ += fmt::format("{} = {}\n", key, value); }

    void word(std::string_view key, std::string_view value) { line(key, quoted(key, value)); }

    void flag(std::string_view key, bool value) { line(key, value ? "true" : "false"); }

    template <typename Number>
    void number(std::string_view key, Number value)
    {
        line(key, written(value));
    }

    /// As few digits as read the same.
    template <typename Number>
    static std::string written(Number value)
    {
        std::string const digits = fmt::format("{}", value);
        return digits == "-0" ? "-0.0" : digits; // without a point the sign would be lost
    }

    template <typename Value>
    void choice(std::string_view key, std::span<char const* const> names, Value value)
    {
        word(key, names[static_cast<std::size_t>(value)]);
    }

    void file(std::string_view key, std::string const& name) { word(key, name.empty() ? "" : name_of(name)); }

    std::string take() { return std::move(text_); }

private:
    static std::string quoted(std::string_view key, std::string_view text)
    {
        if (!toolkit::is_utf8(text)) {
            throw toolkit::Failure(toolkit::Fault::kWrongValue, std::string(key),
                                   "it is no UTF-8, and a project file can hold nothing else",
                                   "rename the file");
        }
        std::string result = "\"";
        for (char const letter : text) {
            auto const code = static_cast<unsigned char>(letter);
            if (letter == '"' || letter == '\\') {
                result += fmt::format("\\{}", letter);
            } else if (code < 0x20 || code == 0x7f) {
                result += fmt::format("\\u{:04x}", static_cast<unsigned>(code));
            } else {
                result += letter;
            }
        }
        return result + "\"";
    }

    /// Relative to the folder if it lies below that.
    std::string name_of(std::string const& name) const
    {
        std::string const all = fs::absolute(name).string();
        std::string const above = folder_.ends_with('/') ? folder_ : fmt::format("{}/", folder_);
        bool const below = !folder_.empty() && all.starts_with(above) && all.size() > above.size();
        std::string const rest = below ? all.substr(above.size()) : "";
        return rest.empty() || rest.front() == '/' ? all : rest;
    }

    std::string folder_;
    std::string text_;
};

void write_settings(ProjectWriter& writer, toolkit::Settings const& settings)
{
    writer.begin("[settings]");
    for (toolkit::SettingRow const& row : toolkit::setting_table()) {
        writer.line(toolkit::preset_key(row), toolkit::preset_value(row, settings));
    }
}

void write_lighting(ProjectWriter& writer, Lighting const& lighting)
{
    writer.begin("[lighting]");
    writer.number("azimuth", lighting.light.azimuth_degrees);
    writer.number("elevation", lighting.light.elevation_degrees);
    writer.number("exposure", lighting.exposure);
    writer.number("ambient", lighting.ambient);
    writer.choice("weights", kWeightNames, lighting.weights);
    writer.file("albedo", lighting.albedo);
}

void write_layer(ProjectWriter& writer, toolkit::StackLayer const& layer, bool shown)
{
    writer.begin("[[layers.layer]]");
    writer.word("label", layer.label);
    writer.file("file", layer.file);
    writer.choice("kind", kLayerKinds, layer.is_normal_map);
    writer.choice("blend", kBlendWords, layer.blend);
    writer.number("opacity", layer.opacity);
    if (layer.n_scale) {
        writer.number("n_scale", *layer.n_scale);
    } else {
        writer.word("n_scale", kNoScale);
    }
    writer.number("detail", layer.detail);
    writer.number("gaussian", layer.gaussian);
    writer.number("depth", layer.depth);
    writer.line("edges", fmt::format("[{}, {}]", ProjectWriter::written(layer.edge_a),
                                     ProjectWriter::written(layer.edge_b)));
    writer.flag("shown", shown);
}

void write_layers(ProjectWriter& writer, Layers const& layers)
{
    toolkit::StackDescription const& stack = layers.description;
    writer.begin("[layers]");
    writer.number("normal_scale", stack.normal_scale);
    writer.choice("save_depth", kSaveDepths, stack.save_depth ? static_cast<int>(*stack.save_depth) + 1 : 0);
    for (std::size_t i = 0; i < stack.layers.size(); ++i) {
        write_layer(writer, stack.layers[i], i >= layers.shown.size() || layers.shown[i]);
    }
}

void write_view(ProjectWriter& writer, View const& view)
{
    writer.begin("[view]");
    writer.choice("left", kShowNames, view.left);
    writer.choice("right", kShowNames, view.right);
    writer.choice("arrangement", kArrangementNames, view.arrangement);
    writer.number("split", view.split);
    writer.choice("channel", kChannelNames, view.channel);
    writer.number("zoom", view.zoom);
    writer.number("centre_x", view.centre_x);
    writer.number("centre_y", view.centre_y);
    writer.number("tiles", view.tiles);
}

} // namespace

std::string project_text(Project const& project, fs::path const& folder)
{
    ProjectWriter writer(folder);
    State const& state = project.state;
    writer.number("version", kProjectVersion);
    if (!project.saved_as.empty()) {
        writer.file("saved_as", project.saved_as);
    }
    writer.file("source", state.source);
    writer.word("profile", state.profile);
    write_settings(writer, state.settings);
    write_lighting(writer, state.lighting);
    write_layers(writer, state.layers);
    write_view(writer, state.view);
    return writer.take();
}

void save_project(State const& state, fs::path const& file)
{
    fs::path const folder = fs::absolute(file).parent_path();
    toolkit::write_text_file(file, project_text({state, ""}, folder), true);
}

} // namespace umbrix_desktop
