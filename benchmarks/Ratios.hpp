/// @file
/// A benchmark program measures ours and the peers in one run on the same inputs, and tells the ratios.
#pragma once

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cmath>
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace Benchmarks
{

enum class Whose
{
    Ours,
    Peers
};

/// Who does the work: whose processor time is measured.
enum class DoneBy
{
    ThisProcess,
    ItsChildren
};

/// One way to do the work of the program on one input.
struct Candidate
{
    std::string input;
    std::string name;
    Whose whose;

    /// Does the work once; throws when the result cannot be right.
    std::function<void()> run;

    DoneBy doneBy = DoneBy::ThisProcess;

    std::string FullName() const { return input + "/" + name; }
};

/// How much longer `ours` may take than `peer`, which are full names of candidates.
struct Limit
{
    std::string what;
    std::string ours;
    std::string peer;
    double atMost;
};

/// Two candidates with the same input.
inline Limit LimitOf(const std::string& input, const std::string& ours, const std::string& peer,
                     double atMost)
{
    return {input + ": " + ours + " / " + peer, input + "/" + ours, input + "/" + peer, atMost};
}

/// Keeps a candidate from giving a figure for work that it did not do.
inline void Expect(bool condition, const char* otherwise)
{
    if (!condition)
        throw std::runtime_error(otherwise);
}

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
                medians[run.run_name.function_name] = run.run_name.time_type == "manual_time"
                                                          ? run.GetAdjustedRealTime()
                                                          : run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }

    /// In milliseconds; not a number when the benchmark did not run, or failed.
    double MedianOf(const std::string& fullName) const
    {
        const auto found = medians.find(fullName);
        return found == medians.end() ? std::numeric_limits<double>::quiet_NaN() : found->second;
    }

    double RatioOf(const Limit& limit) const { return MedianOf(limit.ours) / MedianOf(limit.peer); }

  private:
    std::map<std::string, double> medians;
};

/// In seconds, of the children that have ended.
inline double ProcessorTimeOfChildren()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval& time)
    { return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// The first run, which makes ready what all runs use, is not measured.
inline void Measure(benchmark::State& state, const Candidate& candidate)
{
    try
    {
        candidate.run();
        for (auto _ : state)
        {
            const double start = candidate.doneBy == DoneBy::ItsChildren ? ProcessorTimeOfChildren() : 0;
            candidate.run();
            if (candidate.doneBy == DoneBy::ItsChildren)
                state.SetIterationTime(ProcessorTimeOfChildren() - start);
        }
    }
    catch (const std::exception& exception)
    {
        state.SkipWithError(exception.what());
    }
}

/// @return the arguments that Google Benchmark does not know, behind the program's name
inline std::vector<char*> InitializeBenchmark(int argc, char** argv)
{
    std::vector<char*> arguments(argv, argv + argc);
    // Before the user's own arguments, which win.
    static char repetitions[] = "--benchmark_repetitions=7";
    static char interleaving[] = "--benchmark_enable_random_interleaving=true";
    static char shortRuns[] = "--benchmark_min_time=0.1";
    static char aggregates[] = "--benchmark_display_aggregates_only=true";
    arguments.insert(arguments.begin() + 1, {repetitions, interleaving, shortRuns, aggregates});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    arguments.resize(static_cast<size_t>(count));
    return arguments;
}

/// @return whether all are within their limits; a ratio that could not be measured is not
inline bool PrintRatios(const std::vector<Limit>& limits, const MedianCollector& collector)
{
    bool allWithinLimits = true;
    std::printf("\n%-90s %8s %8s\n", "Ratio of the median processor times", "is", "at most");
    for (const Limit& limit : limits)
    {
        const double ratio = collector.RatioOf(limit);
        const bool isWithinLimit = ratio <= limit.atMost;
        const char* const verdict = isWithinLimit       ? ""
                                    : std::isnan(ratio) ? "   NOT MEASURED"
                                                        : "   TOO SLOW";
        std::printf("%-90s %8.3f %8.3f%s\n", limit.what.c_str(), ratio, limit.atMost, verdict);
        allWithinLimits = allWithinLimits && isWithinLimit;
    }
    return allWithinLimits;
}

/// The input of report.py: lines of fields with tabs between them.
inline void WriteFigures(const char* path, const std::vector<Candidate>& candidates,
                         const std::vector<Limit>& limits, const MedianCollector& collector)
{
    std::ofstream file(path);
    for (const Candidate& candidate : candidates)
        file << "time\t" << candidate.input << '\t' << candidate.name << '\t'
             << (candidate.whose == Whose::Ours ? "ours" : "peer") << '\t'
             << collector.MedianOf(candidate.FullName()) << '\n';
    for (const Limit& limit : limits)
        file << "limit\t" << limit.what << '\t' << collector.RatioOf(limit) << '\t' << limit.atMost << '\n';
    file.close();
    Expect(!file.fail(), "the figures could not be written");
}

/// The body of `main`: runs all candidates in interleaved repetitions, prints the ratios of their medians,
/// writes the figures into the file that the program's argument names, if there is one, and returns 1 when a
/// ratio is above its limit or could not be measured.
inline int RunAndCompare(int argc, char** argv, const std::vector<Candidate>& candidates,
                         const std::vector<Limit>& limits)
{
    for (const Candidate& candidate : candidates)
    {
        auto* const registered =
            benchmark::RegisterBenchmark(candidate.FullName().c_str(), Measure, candidate)
                ->Unit(benchmark::kMillisecond);
        if (candidate.doneBy == DoneBy::ItsChildren)
            registered->UseManualTime();
    }
    const std::vector<char*> arguments = InitializeBenchmark(argc, argv);
    MedianCollector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    if (arguments.size() > 1)
        WriteFigures(arguments[1], candidates, limits, collector);
    return PrintRatios(limits, collector) ? 0 : 1;
}

} // namespace Benchmarks
