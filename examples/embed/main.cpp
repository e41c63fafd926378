// SPDX-License-Identifier: MIT
// The library in a front end: the work in a thread of its own, its progress on the screen, an end at Ctrl-C.
//   embed FOLDER PATTERN    makes a map beside each picture of 24 or 32 bits: embed stones '*_height.tga'
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
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

int main(int count, char** arguments)
{
    if (count != 3) {
        return std::fputs("usage: embed FOLDER PATTERN, the pattern with an extension\n", stderr), 2;
    }
    std::error_code fault; // the library asks for an absolute folder, without a separator at its end
    std::string const folder = std::filesystem::canonical(arguments[1], fault).string();
    if (fault) {
        return std::fprintf(stderr, "%s: %s\n", arguments[1], fault.message().c_str()), 2;
    }
    std::signal(SIGINT, ask_to_stop);
    umbrix_options options = umbrixlib::height_map_options(0.1f, 0); // no width: the layers make the normals
    options.rays = 64;
    options.cancel = &stop;
    LinkedList<n_layer> layers = two_layers();
    std::string file, stage; // written while the run lasts, so read after it
    int progress = 0;        // written too, and may be looked at any time
    std::atomic<bool> working = true, whole = false;
    std::thread worker([&] {
        whole = UmbrixFolder(folder, arguments[2], options, &layers, &file, &stage, &progress);
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
