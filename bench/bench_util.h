#pragma once

#include <QElapsedTimer>
#include <QString>
#include <algorithm>
#include <functional>
#include <vector>

namespace qivo::bench {

// Median wall time of repeated runs, in milliseconds.
inline double medianMs(int runs, const std::function<void()>& body) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        body();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// Peak resident memory of this process so far, in MiB.
double peakResidentMiB();

// One line of the result table.
void printRow(const QString& what, const QString& n, double ms, const QString& note = {});

}  // namespace qivo::bench
