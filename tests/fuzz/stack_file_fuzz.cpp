// SPDX-License-Identifier: MIT
// Any bytes as a stack file: a description that can be worked on, or one sentence that tells why not.
#include "demand.h"
#include "memory_file.h"
#include "one_line.h"
#include "terminal/advice.h"
#include "toolkit/settings/stack_file.h"
#include "toolkit/workers/crossing_internal.h"

namespace {

using umbrixlib::fuzz::demand;
using umbrixlib::fuzz::demand_one_line;
using namespace umbrix_cli;

bool is_finite(StackLayer const& layer)
{
    for (float const value : {layer.opacity, layer.n_scale.value_or(0.0f), layer.detail, layer.gaussian,
                              layer.depth, layer.edge_a, layer.edge_b}) {
        if (!std::isfinite(value)) {
            return false;
        }
    }
    return true;
}

void check(StackFile const& file)
{
    StackDescription const& description = file.description;
    demand(!description.layers.empty(), "a stack has layers");
    demand(!description.layers[0].is_normal_map, "the first layer is a height map");
    demand(std::isfinite(description.normal_scale), "normal_scale is a number");
    for (StackLayer const& layer : description.layers) {
        demand(is_finite(layer), "the numbers of a layer are numbers");
        demand(layer.blend >= 0 && layer.blend < 4, "the blend is known");
        demand(!layer.file.empty(), "a layer has a file");
    }
    for (std::string const& note : file.notes) {
        demand_one_line(note);
    }
    // What a worker is told is all of it.
    StackJob job;
    job.description = description;
    std::string message = pack(Job(job));
    Job const arrived = unpack_job(take_message(message, message.size()).value());
    demand(std::get<StackJob>(arrived) == job, "a worker hears what it is told");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size)
{
    static umbrixlib::test::MemoryFile const file;
    file.set_content(bytes, size);
    try {
        check(read_stack_file(file.name()));
    } catch (Failure const& failure) {
        demand_one_line(error_line(complaint_about(failure), "umbrix stack"));
    }
    return 0;
}
