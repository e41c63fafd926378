// SPDX-License-Identifier: MIT
// The library in a front end: the work in a thread of its own, its progress on the screen, an end at Ctrl-C.
//   embed FOLDER PATTERN    makes a map beside each picture of 24 or 32 bits, as in: embed stones
//   '*_height.tga'
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>
#include <umbrixlib.h>

static bool stop = false;

static void ask_to_stop(int) // the file in work is finished first
{
    std::atomic_ref(stop).store(true, std::memory_order_relaxed);
}

/// One blurred layer for the large shapes, and one for the detail, whose slopes are added to it.
static LinkedList<n_layer> two_layers()
{
    n_layer shapes, detail;
    shapes.n_scale = 10, shapes.gaussian = 4, shapes.normal_scale = 1, shapes.regenerate = true;
    shapes.blend_mode = 3, shapes.opacity = 100; // say how the layer after this one joins
    detail.n_scale = 2, detail.regenerate = true;
    LinkedList<n_layer> layers;
    layers.Add(shapes);
    layers.Add(detail);
    return layers;
}

static umbrix_options options_for_heights()
{
    umbrix_options options = {};
    options.calc_type = calc_type_light_occlusion;
    options.height_map = options.generate_normal = true;
    options.rays = 64, options.radius = 0.25f, options.h_scale = 0.1f;
    options.alpha_limit = options.theta_limit = 120;
    options.tile = options.h_tile = options.v_tile = true;
    options.max = options.h_max = 255;
    options.UmbrixMode = Modes_UnitBasis;
    options.basis_a = {-0.40824829f, 0.70710678f, 0.57735027f};
    options.basis_b = {-0.40824829f, -0.70710678f, 0.57735027f};
    options.basis_c = {0.81649658f, 0, 0.57735027f};
    options.cancel = &stop;
    return options;
}

int main(int count, char** arguments)
{
    if (count != 3) {
        return std::fputs("usage: embed FOLDER PATTERN, the pattern with an extension\n", stderr), 2;
    }
    std::signal(SIGINT, ask_to_stop);
    umbrix_options options = options_for_heights();
    LinkedList<n_layer> layers = two_layers();
    std::string file, stage; // written while the run lasts, so read after it
    int progress = 0;        // written too, and may be looked at any time
    std::atomic<bool> working = true, whole = false;
    std::thread worker([&] {
        whole = UmbrixFolder(arguments[1], arguments[2], options, &layers, &file, &stage, &progress);
        working = false;
    });
    while (working) {
        std::printf("\r%4d of 1000", std::atomic_ref(progress).load(std::memory_order_relaxed));
        std::fflush(stdout);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    worker.join();
    std::printf("\r%s %s\n", whole ? "done, the last was" : "stopped behind", file.c_str());
    return whole ? 0 : 130;
}
