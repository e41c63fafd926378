// SPDX-License-Identifier: MIT
#include "toolkit/settings/stack_file.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/preflight.h"
#include "toolkit/settings/toml_reading_internal.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr double kAny = 1e6;
constexpr char const* kBlendNames[] = {"blend", "overlay", "multiply", "add"}; // in the library's order

using Entry = TomlEntry;

float number(Entry const& entry, double minimum, double maximum)
{
    return static_cast<float>(entry.number(minimum, maximum));
}

void read_file(Entry const& entry, StackLayer& layer)
{
    layer.file = entry.text("name a picture");
    if (layer.file.empty()) {
        entry.refuse("it is empty", "name a picture");
    }
}

void read_kind(Entry const& entry, StackLayer& layer)
{
    constexpr char const* kRemedy = "give \"height\" or \"normal\"";
    std::string const kind = entry.text(kRemedy);
    if (kind != "height" && kind != "normal") {
        entry.refuse(fmt::format("'{}' is no kind of layer", kind), kRemedy);
    }
    layer.is_normal_map = kind == "normal";
}

void read_blend(Entry const& entry, StackLayer& layer)
{
    constexpr char const* kRemedy = R"(give "blend", "overlay", "multiply" or "add")";
    std::string const blend = entry.text(kRemedy);
    auto const* const found = std::find(std::begin(kBlendNames), std::end(kBlendNames), blend);
    if (found == std::end(kBlendNames)) {
        entry.refuse(fmt::format("'{}' is no way to blend", blend), kRemedy);
    }
    layer.blend = static_cast<int>(found - std::begin(kBlendNames));
}

void read_edges(Entry const& entry, StackLayer& layer)
{
    toml::array const* const pair = entry.node.as_array();
    if (pair == nullptr || pair->size() != 2) {
        entry.refuse("it is not a pair of numbers", "give [convex, concave]");
    }
    layer.edge_a = number(Entry{entry.subject, (*pair)[0]}, -kAny, kAny);
    layer.edge_b = number(Entry{entry.subject, (*pair)[1]}, -kAny, kAny);
}

SampleType read_depth(Entry const& entry)
{
    std::string const remedy = fmt::format("give \"{}\"", fmt::join(kDepthNames, "\", \""));
    std::string const text = entry.word(remedy);
    auto const depth = depth_called(text);
    if (!depth) {
        entry.refuse(fmt::format("'{}' is no depth", text), remedy);
    }
    return *depth;
}

/// A key of a layer, and how its value is taken in.
struct LayerKey {
    std::string_view name;
    void (*read)(Entry const&, StackLayer&);
    bool heights_only; ///< Without an effect on a normal layer.
};

constexpr LayerKey kLayerKeys[] = {
    {"file", read_file, false},
    {"kind", read_kind, false},
    {"blend", read_blend, false},
    {"opacity", [](Entry const& e, StackLayer& layer) { layer.opacity = number(e, -kAny, kAny); }, false},
    {"n_scale", [](Entry const& e, StackLayer& layer) { layer.n_scale = number(e, -kAny, kAny); }, true},
    {"detail", [](Entry const& e, StackLayer& layer) { layer.detail = number(e, 0, 100); }, true},
    {"gaussian", [](Entry const& e, StackLayer& layer) { layer.gaussian = number(e, 0, 1000); }, true},
    {"depth", [](Entry const& e, StackLayer& layer) { layer.depth = number(e, -100, 100); }, true},
    {"edges", read_edges, true},
};

std::string key_names()
{
    std::string all;
    for (LayerKey const& key : kLayerKeys) {
        all += fmt::format("{}{}", all.empty() ? "" : ", ", key.name);
    }
    return all;
}

/// The key of that name, or null.
LayerKey const* key_named(std::string_view name)
{
    auto const* const found = std::find_if(std::begin(kLayerKeys), std::end(kLayerKeys),
                                           [&](LayerKey const& key) { return key.name == name; });
    return found == std::end(kLayerKeys) ? nullptr : found;
}

bool is_table(toml::node const& node)
{
    return node.is_table();
}

/// Reads the parts of one parsed file.
class StackReader {
public:
    explicit StackReader(fs::path file) : file_(std::move(file)) {}

    StackFile read(toml::table const& top)
    {
        toml::array const* layers = nullptr;
        for (auto const& [key, node] : top) {
            Entry const entry{fmt::format("{}: {}", file_.string(), key.str()), node};
            if (key == "normal_scale") {
                result_.description.normal_scale = number(entry, -kAny, kAny);
            } else if (key == "save_depth") {
                result_.description.save_depth = read_depth(entry);
            } else if (key == "layer") {
                layers = node.as_array();
                if (layers == nullptr || !std::all_of(layers->begin(), layers->end(), is_table)) {
                    entry.refuse("it is not a list of tables", "begin each layer with [[layer]]");
                }
            } else {
                entry.refuse(Fault::kUnknownKey, "there is no such key",
                             "known at the top are normal_scale, save_depth and [[layer]]");
            }
        }
        if (layers == nullptr || layers->empty()) {
            throw Failure(Fault::kNoLayers, file_.string(), "it has no layers");
        }
        for (toml::node const& layer : *layers) {
            read_layer(*layer.as_table());
        }
        return std::move(result_);
    }

private:
    void read_layer(toml::table const& table)
    {
        StackLayer layer;
        std::size_t const number = result_.description.layers.size() + 1;
        layer.label = fmt::format("{}: layer {}", file_.string(), number);
        for (auto const& [key, node] : table) {
            Entry const entry{fmt::format("{}: {}", layer.label, key.str()), node};
            LayerKey const* const known = key_named(key.str());
            if (known == nullptr) {
                entry.refuse(Fault::kUnknownKey, "there is no such key", "known are " + key_names());
            }
            known->read(entry, layer);
        }
        if (layer.file.empty()) {
            throw Failure(Fault::kWrongValue, layer.label + ": file", "it is missing", "name a picture");
        }
        layer.file = (file_.parent_path() / layer.file).string();
        if (number == 1 && layer.is_normal_map) {
            throw Failure(Fault::kFirstLayerNotHeights, layer.label + ": kind",
                          "the first layer has to be a height map");
        }
        note_what_has_no_effect(table, layer, number == 1);
        result_.description.layers.push_back(std::move(layer));
    }

    void note_what_has_no_effect(toml::table const& table, StackLayer const& layer, bool first)
    {
        auto const note = [&](std::string_view key, std::string const& text) {
            result_.notes.push_back(fmt::format("{}: {}: {}", layer.label, key, text));
        };
        for (std::string_view const key : {"blend", "opacity"}) {
            if (first && table.contains(key)) {
                note(key, "it has no effect, as nothing lies below the first layer");
            }
        }
        if (!first && (layer.opacity < 0 || layer.opacity > 100)) {
            note("opacity", fmt::format("{} is outside 0 to 100, which some ways to blend take as it is and "
                                        "others limit",
                                        layer.opacity));
        }
        for (LayerKey const& key : kLayerKeys) {
            if (layer.is_normal_map && key.heights_only && table.contains(key.name)) {
                note(key.name, "it has no effect on a normal layer");
            }
        }
        bool const works = layer.edge_a > 0 && layer.edge_b > 0;
        if (!layer.is_normal_map && !works && (layer.edge_a != 0 || layer.edge_b != 0)) {
            note("edges", "they have no effect unless both are above 0");
        }
    }

    fs::path file_;
    StackFile result_;
};

} // namespace

StackFile read_stack_file(fs::path const& file)
{
    return StackReader(file).read(parse_toml_file(file, "a stack file", Fault::kNoStackFile));
}

void check_layer_files(StackDescription const& description)
{
    for (StackLayer const& layer : description.layers) {
        try {
            check_input(layer.file);
        } catch (Failure const& failure) {
            throw Failure(failure.fault, layer.file_label(), failure.what(), failure.remedy);
        }
    }
}

} // namespace umbrixlib::toolkit
