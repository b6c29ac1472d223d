#include "bench_util.h"

#include <sys/resource.h>

#include <cstdio>

namespace qivo::bench {

namespace {

double elapsedMs(const std::function<void()>& body) {
    QElapsedTimer timer;
    timer.start();
    body();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

}  // namespace

double medianMs(const std::function<void()>& body, int runs) {
    body();
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        times.push_back(elapsedMs(body));
    }
    return median(std::move(times));
}

std::pair<double, double> medianPairMs(const std::function<void()>& a,
                                       const std::function<void()>& b, int runs) {
    a();
    b();
    std::vector<double> timesA;
    std::vector<double> timesB;
    for (int i = 0; i < runs; ++i) {
        timesA.push_back(elapsedMs(a));
        timesB.push_back(elapsedMs(b));
    }
    return {median(std::move(timesA)), median(std::move(timesB))};
}

double peakResidentMiB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void printRow(const QString& what, const QString& n, double ms, const QString& note) {
    std::printf("| %-44s | %7s | %10.1f | %-30s |\n", what.toUtf8().constData(),
                n.toUtf8().constData(), ms, note.toUtf8().constData());
    std::fflush(stdout);
}

QString ratio(double ours, double floor) {
    return QStringLiteral("ratio %1").arg(ours / floor, 0, 'f', 2);
}

}  // namespace qivo::bench
