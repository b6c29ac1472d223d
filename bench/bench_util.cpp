#include "bench_util.h"

#include <sys/resource.h>

#include <cstdio>

namespace qivo::bench {

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

}  // namespace qivo::bench
