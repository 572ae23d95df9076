/// @file
/// A benchmark program measures ours and the peer in one run on the same input, and tells the ratio.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace Benchmarks
{

/// Two benchmarks of the program by their names, and how much longer `ours` may take than `peer`.
struct Comparison
{
    const char* what;
    const char* ours;
    const char* peer;
    double atMost;
};

/// Shows the benchmarks as usual and keeps the median of each one's processor times.
class MedianCollector : public benchmark::ConsoleReporter
{
  public:
    MedianCollector()
        : ConsoleReporter(OO_Tabular)
    {
    }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }

    /// 0 when the benchmark did not run, or failed.
    double MedianOf(const std::string& name) const
    {
        const auto found = medians.find(name);
        return found == medians.end() ? 0 : found->second;
    }

  private:
    std::map<std::string, double> medians;
};

/// The body of `main`: runs all benchmarks in interleaved repetitions, prints the ratios of their medians,
/// and returns 1 when one is above its limit or could not be measured.
inline int RunAndCompare(int argc, char** argv, const std::vector<Comparison>& comparisons)
{
    std::vector<char*> arguments(argv, argv + argc);
    // Before the user's own arguments, which win.
    char repetitions[] = "--benchmark_repetitions=7";
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char shortRuns[] = "--benchmark_min_time=0.1";
    char aggregates[] = "--benchmark_display_aggregates_only=true";
    arguments.insert(arguments.begin() + 1, {repetitions, interleaving, shortRuns, aggregates});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    MedianCollector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);

    bool allWithinLimits = true;
    std::printf("\n%-60s %8s %8s\n", "Ratio of the median processor times", "is", "at most");
    for (const Comparison& comparison : comparisons)
    {
        const double peer = collector.MedianOf(comparison.peer);
        const double ours = collector.MedianOf(comparison.ours);
        if (peer == 0 || ours == 0)
        {
            std::printf("%-60s was not measured\n", comparison.what);
            allWithinLimits = false;
            continue;
        }
        const bool isWithinLimit = ours / peer <= comparison.atMost;
        std::printf("%-60s %8.3f %8.3f%s\n", comparison.what, ours / peer, comparison.atMost,
                    isWithinLimit ? "" : "   TOO SLOW");
        allWithinLimits = allWithinLimits && isWithinLimit;
    }
    return allWithinLimits ? 0 : 1;
}

} // namespace Benchmarks
