#include "bench/medians.h"

#include "bench/bench.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>

namespace {

/** Keeps the medians, prints nothing. */
class MedianKeeper : public benchmark::BenchmarkReporter {
public:
    std::map<std::string, double> medians;

    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            // A single repetition has no aggregates.
            if (run.run_type == Run::RT_Iteration ? run.repetitions == 1 : run.aggregate_name == "median")
                medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
        }
    }
};

} // namespace

std::vector<double> medianMicroseconds(const Effort& effort, const std::vector<Task>& tasks)
{
    for (const Task& task : tasks) {
        const auto measure = [&task](benchmark::State& state) {
            for (auto _ : state)
                task.run();
        };
        task.run(); // what only the first run costs is no part of the figure
        benchmark::RegisterBenchmark(task.name.c_str(), measure)
            ->Unit(benchmark::kMicrosecond)
            ->MeasureProcessCPUTime() // the toolkit paints on several threads
            ->MinTime(effort.secondsPerTask)
            ->Repetitions(effort.repetitions);
    }
    MedianKeeper keeper;
    benchmark::RunSpecifiedBenchmarks(&keeper);
    benchmark::ClearRegisteredBenchmarks();
    std::vector<double> result;
    for (const Task& task : tasks)
        result.push_back(keeper.medians[task.name]);
    return result;
}

double median(std::vector<double> values)
{
    return quantile(std::move(values), 0.5);
}

double quantile(std::vector<double> values, double share)
{
    if (values.empty())
        return 0;
    const auto place = std::min(values.size() - 1, std::size_t(double(values.size()) * share));
    std::nth_element(values.begin(), values.begin() + std::ptrdiff_t(place), values.end());
    return values[place];
}
