// Benchmarks here time two things in turn and print how many times longer the one takes.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

namespace bench
{
using Action = std::function<void()>;

inline double secondsFor(const Action& action)
{
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

inline void printHead()
{
    std::printf("%-46s %10s %10s %8s  %s\n", "", "seconds", "baseline", "ratio", "target");
}

inline void printRow(const char* what, double seconds, double baseline, const char* target)
{
    std::printf("%-46s %10.4f %10.4f %8.3f  %s\n", what, seconds, baseline, seconds / baseline,
                target);
    std::fflush(stdout);
}

// Medians of both, each run once before, then in turn: a machine that slows down slows both.
inline void compare(const char* what, const char* target, int runs, const Action& action,
                    const Action& baseline)
{
    action();
    baseline();
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int run = 0; run < runs; ++run) {
        ours.push_back(secondsFor(action));
        theirs.push_back(secondsFor(baseline));
    }
    printRow(what, median(ours), median(theirs), target);
}
} // namespace bench
