// SPDX-License-Identifier: MIT
#include "toolkit/tasks/jobs.h"

#include "toolkit/base/overloaded.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace umbrixlib::toolkit {

namespace {

template <typename OneJob>
concept HasAlbedo = requires(OneJob const& job)
{
    job.albedo.empty();
};

} // namespace

std::vector<std::string> distinct_inputs(PackJob const& job)
{
    std::vector<std::string> files;
    for (PackedChannel const& channel : job.channels) {
        if (!channel.file.empty() && std::ranges::count(files, channel.file) == 0) {
            files.push_back(channel.file);
        }
    }
    return files;
}

NamedFiles files_of(Job const& job)
{
    NamedFiles files;
    auto const add_output = [&](Output const& output) {
        if (!output.file.empty()) {
            files.outputs.push_back(output.file);
        }
    };
    auto const add_layers = [&](auto const& layers, auto name) {
        std::ranges::transform(layers, std::back_inserter(files.inputs), name);
    };
    auto const add = [&](JobFiles const& one) {
        files.inputs.push_back(one.input);
        add_output(one.output);
    };
    std::visit(Overloaded{
                   [&](auto const& each) { add(each.files); },
                   [&](BentJob const& bent) {
                       add(bent.files);
                       add_output(bent.occlusion);
                   },
                   [&](HorizonJob const& horizon) {
                       add(horizon.files);
                       add_output(horizon.later);
                   },
                   [&](HasAlbedo auto const& lit) {
                       add(lit.files);
                       if (!lit.albedo.empty()) {
                           files.inputs.push_back(lit.albedo);
                       }
                   },
                   [&](ListJob const& list) {
                       add(list.files);
                       add_layers(list.layers, &n_layer::filename);
                   },
                   [&](PackJob const& pack) {
                       files.inputs = distinct_inputs(pack);
                       add_output(pack.files.output);
                   },
                   [&](InfoJob const& info) { files.inputs = {info.input}; },
                   [&](StackJob const& stack) {
                       add_layers(stack.description.layers, &StackLayer::file);
                       for (Output const* const each : {&stack.normals, &stack.heights, &stack.map}) {
                           add_output(*each);
                       }
                   },
                   [&](FitJob const& fit) {
                       files.inputs = {fit.heights, fit.normals};
                   },
                   [](DevicesJob const&) {},
                   [](FolderJob const&) {},
               },
               job);
    return files;
}

std::string name_of_input(Job const& job)
{
    return std::visit(Overloaded{
                          [](auto const& each) { return each.files.input; },
                          [](InfoJob const& info) { return info.input; },
                          [](StackJob const& stack) { return stack.file; },
                          [](FitJob const& fit) { return fit.heights; },
                          [](DevicesJob const&) { return std::string("graphics library"); },
                          [](FolderJob const& folder) { return folder.folder; },
                      },
                      job);
}

Pictures pictures_of(Job const& job)
{
    constexpr double kNoBound = std::numeric_limits<double>::infinity();
    return std::visit(
        Overloaded{
            [](auto const& each) {
                return Pictures{1, each.files.max_texels};
            },
            [](HasAlbedo auto const& lit) {
                return Pictures{lit.albedo.empty() ? 1.0 : 2.0, lit.files.max_texels};
            },
            [](ListJob const& list) {
                return Pictures{1 + static_cast<double>(list.layers.size()), list.files.max_texels};
            },
            [](PackJob const& pack) {
                return Pictures{static_cast<double>(distinct_inputs(pack).size()), pack.files.max_texels};
            },
            [](InfoJob const& info) {
                return Pictures{1, info.max_texels};
            },
            [](FitJob const& fit) {
                return Pictures{2, fit.max_texels};
            },
            [](StackJob const& stack) {
                return Pictures{static_cast<double>(stack.description.layers.size()), stack.max_texels};
            },
            [](DevicesJob const&) {
                return Pictures{0, 0};
            },
            [](FolderJob const&) {
                return Pictures{kNoBound, kNoBound};
            },
        },
        job);
}

} // namespace umbrixlib::toolkit
