#pragma once

#include <QElapsedTimer>
#include <QString>
#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace qivo::bench {

// Runs per line; the median of an odd count is one measured run.
constexpr int kRuns = 7;

// Median wall time of `runs` runs after one warm-up run, in milliseconds.
double medianMs(const std::function<void()>& body, int runs = kRuns);

// Median wall times of two bodies run alternately (a, b, a, b …) after one warm-up run of each,
// so that a neighbour's load in the middle of the measurement slows both alike.
std::pair<double, double> medianPairMs(const std::function<void()>& a,
                                       const std::function<void()>& b, int runs = kRuns);

// Peak resident memory of this process so far, in MiB.
double peakResidentMiB();

// One line of the result table.
void printRow(const QString& what, const QString& n, double ms, const QString& note = {});

// "ratio 1.07" for ours against a floor.
QString ratio(double ours, double floor);

}  // namespace qivo::bench
