#include "database/sqlite/sqlite_watch.h"

#include <sqlite3.h>

namespace qivo::database {

namespace {

// Steps of work between two calls of the progress handler: a call costs a clock reading.
constexpr int kStepsPerCall = 4000;
constexpr int kBusyPauseMs = 5;

}  // namespace

SqliteWatch::SqliteWatch(sqlite3* handle, int busyTimeoutMs) : busyTimeoutMs_(busyTimeoutMs) {
    sqlite3_progress_handler(handle, kStepsPerCall, &SqliteWatch::onProgress, this);
    sqlite3_busy_handler(handle, &SqliteWatch::onBusy, this);
}

// A true answer interrupts the statement running now, and only that one: sqlite3_interrupt
// would go on interrupting every statement started while a record set is still being read.
int SqliteWatch::onProgress(void* watch) {
    auto& self = *static_cast<SqliteWatch*>(watch);
    self.serveWindows();
    return self.cancelled_ ? 1 : 0;
}

// Returns whether to try the lock again.
int SqliteWatch::onBusy(void* watch, int attempts) {
    auto& self = *static_cast<SqliteWatch*>(watch);
    if (attempts == 0) {
        self.busy_.start();
    }
    if (self.cancelled_ || self.busy_.hasExpired(self.busyTimeoutMs_)) {
        return 0;
    }
    sqlite3_sleep(kBusyPauseMs);
    self.serveWindows();
    return self.cancelled_ ? 0 : 1;
}

void SqliteWatch::serveWindows() {
    // Work outside run() (the schema, the demo data) is not watched.
    if (depth_ == 0) {
        return;
    }
    if (!timing_) {
        timing_ = true;
        running_.start();
        return;
    }
    if (!wait_) {
        if (noWait_ || !running_.hasExpired(kWaitShownAfterMs)) {
            return;
        }
        wait_ = makeStatementWait();
        noWait_ = !wait_;
        if (noWait_) {
            return;
        }
    } else if (!sinceServed_.hasExpired(kWaitPollMs)) {
        return;
    }
    sinceServed_.start();
    if (wait_->keepAlive(0)) {
        cancelled_ = true;
    }
}

void SqliteWatch::finish() {
    if (--depth_ > 0) {
        return;
    }
    timing_ = false;
    cancelled_ = false;
    noWait_ = false;
    wait_.reset();
}

}  // namespace qivo::database
