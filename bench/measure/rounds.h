// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace umbrixlib::bench {

/// One of the forms that are measured side by side.
struct Contender {
    std::string name;
    std::function<void()> run;
    double scale = 1.0; ///< What one run stands for, where it does only a part of the work.
};

/// How much time a measurement may take.
struct Effort {
    int most_rounds;
    int least_rounds;
    double seconds;      ///< No round beyond the least is begun after this time.
    double least_sample; ///< A short run is repeated until a sample takes this many seconds.
};

constexpr Effort kFullEffort = {9, 3, 3.0, 0.03};
constexpr Effort kQuickEffort = {3, 1, 0.5, 0.015};

/// Reads "--quick" from the command line.
Effort effort_of(int count, char** words);
bool is_quick(int count, char** words);

using Seconds = std::map<std::string, double>;
using Clock = double (*)();

/// Median time of one run of each, from rounds in which each has its turn after the other. One run of each
/// comes before and is not counted.
Seconds interleaved(std::vector<Contender> const& contenders, Effort const& effort, Clock clock);

double median(std::vector<double> values);

} // namespace umbrixlib::bench
