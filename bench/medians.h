#pragma once

#include <functional>
#include <string>
#include <vector>

struct Effort;

/** Something to measure. */
struct Task {
    std::string name;
    std::function<void()> run;
};

/**
 * The processor time of one run of each task, in microseconds: the median of interleaved repetitions, so that
 * what else the machine does falls on all of them alike.
 */
std::vector<double> medianMicroseconds(const Effort& effort, const std::vector<Task>& tasks);

/** The value in the middle; of an even number the upper one. */
double median(std::vector<double> values);

/** The value below which `share` of all lie. */
double quantile(std::vector<double> values, double share);
