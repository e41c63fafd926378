// SPDX-License-Identifier: MIT
// How long `make_map` on 2048 x 2048 texels goes on after a wish to stop, wherever it comes: at moments
// spread evenly over whole runs, with the bilateral filter and without.
#include <umbrixlib.h>

#include "measure/clocks.h"
#include "measure/file_options.h"
#include "measure/idleness.h"
#include "measure/maps.h"
#include "measure/record.h"
#include "measure/rounds.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace umbrixlib::bench;

constexpr int kSide = 2048;
constexpr double kBarMilliseconds = 50.0;

struct Stop {
    double milliseconds; ///< From the wish to the return.
    std::string stage;   ///< That ran when the wish came.
};

umbrixlib::MapRequest request_for(std::vector<float> const& heights, float filter_radius)
{
    umbrixlib::MapRequest request;
    request.source = {heights.data(), kSide, kSide, 1, umbrixlib::SampleType::kFloat};
    request.options = file_options({"ii", 300, 0.25f, 0.05f}, kSide);
    request.options.b_radius = filter_radius;
    request.options.gaussian = 2.0f;
    request.options.smooth = request.options.h_smooth = 1.0f;
    return request;
}

/// Stops a run after @p seconds, if it is not through by then.
void stop_after(double seconds, umbrixlib::MapRequest request, std::vector<Stop>& stops)
{
    umbrixlib::RunControl control;
    request.control = &control;
    double stopped_at = 0.0;
    std::string stage;
    std::thread front_end([&] {
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
        stage = control.stage();
        stopped_at = wall_seconds();
        control.stop();
    });
    umbrixlib::Outcome const outcome = umbrixlib::make_map(request).outcome;
    double const returned_at = wall_seconds();
    front_end.join();
    if (outcome == umbrixlib::Outcome::kStopped) {
        stops.push_back({1000.0 * (returned_at - stopped_at), stage});
    }
}

void measure(float filter_radius, int moments)
{
    std::vector<float> const heights = heights_of("terrain", kSide);
    umbrixlib::MapRequest const request = request_for(heights, filter_radius);
    umbrixlib::make_map(request);
    double const start = wall_seconds();
    umbrixlib::make_map(request);
    double const whole = wall_seconds() - start;

    std::vector<Stop> stops;
    OthersWatch const others;
    for (int i = 0; i < moments; ++i) {
        stop_after(whole * i / moments, request, stops);
    }
    if (stops.empty()) {
        return;
    }
    std::sort(stops.begin(), stops.end(),
              [](Stop const& a, Stop const& b) { return a.milliseconds < b.milliseconds; });
    double const median = stops[stops.size() / 2].milliseconds;
    Stop const& slowest = stops.back();
    std::fprintf(stderr,
                 "filter radius %.0f: %zu stops, median %.1f ms, largest %.1f ms (%s), bar %.0f ms: %s\n",
                 static_cast<double>(filter_radius), stops.size(), median, slowest.milliseconds,
                 slowest.stage.empty() ? "start" : slowest.stage.c_str(), kBarMilliseconds,
                 slowest.milliseconds <= kBarMilliseconds ? "holds" : "missed");
    print({{"what", "stop"},
           {"side", kSide},
           {"filter_radius", filter_radius},
           {"stops", stops.size()},
           {"others", others.share()},
           {"whole_seconds", whole},
           {"median_milliseconds", median},
           {"largest_milliseconds", slowest.milliseconds},
           {"largest_in", slowest.stage}});
}

} // namespace

int main(int count, char** words)
{
    int const moments = is_quick(count, words) ? 20 : 100;
    measure(0.0f, moments);
    measure(5.0f, moments);
}
