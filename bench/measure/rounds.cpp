// SPDX-License-Identifier: MIT
#include "rounds.h"

#include "clocks.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace umbrixlib::bench {

namespace {

double time_of(Contender const& contender, int runs, Clock clock)
{
    double const start = clock();
    for (int i = 0; i < runs; ++i) {
        contender.run();
    }
    return (clock() - start) / runs;
}

} // namespace

bool is_quick(int count, char** words)
{
    return std::any_of(words + 1, words + count,
                       [](char const* word) { return std::string_view(word) == "--quick"; });
}

Effort effort_of(int count, char** words)
{
    return is_quick(count, words) ? kQuickEffort : kFullEffort;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    std::size_t const middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

Seconds interleaved(std::vector<Contender> const& contenders, Effort const& effort, Clock clock)
{
    std::vector<int> runs;
    for (Contender const& each : contenders) {
        double const first = std::max(time_of(each, 1, clock), 1e-7);
        runs.push_back(static_cast<int>(std::clamp(std::ceil(effort.least_sample / first), 1.0, 1000.0)));
    }
    std::vector<std::vector<double>> samples(contenders.size());
    double const start = wall_seconds();
    for (int round = 0; round < effort.most_rounds; ++round) {
        if (round >= effort.least_rounds && wall_seconds() - start > effort.seconds) {
            break;
        }
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            samples[i].push_back(time_of(contenders[i], runs[i], clock) * contenders[i].scale);
        }
    }
    Seconds seconds;
    for (std::size_t i = 0; i < contenders.size(); ++i) {
        seconds[contenders[i].name] = median(samples[i]);
    }
    return seconds;
}

} // namespace umbrixlib::bench
