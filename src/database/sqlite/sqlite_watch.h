#pragma once

#include <QElapsedTimer>
#include <memory>
#include <utility>

#include "database/statement_wait.h"
#include "runtime/runtime_error.h"

struct sqlite3;

namespace qivo::database {

// Watches the embedded engine's statements from inside the engine, which calls back every few
// thousand steps of work and while it waits for another program's lock: a statement still
// running after a moment shows the statement wait and serves the windows meanwhile; the user's
// cancel interrupts it and it ends in the cancelled error.
class SqliteWatch final {
  public:
    // Takes over the connection's progress and busy handlers; a lock is waited for up to
    // busyTimeoutMs.
    SqliteWatch(sqlite3* handle, int busyTimeoutMs);
    SqliteWatch(const SqliteWatch&) = delete;
    SqliteWatch& operator=(const SqliteWatch&) = delete;

    // Runs database work (one step of a query, one command) under the watch.
    template <class Work>
    decltype(auto) run(Work&& work) {
        ++depth_;
        const Finish finish{*this};
        try {
            return std::forward<Work>(work)();
        } catch (const runtime::RuntimeError&) {
            if (cancelled_) {
                throwCancelled();
            }
            throw;
        }
    }

    // Whether the user has cancelled the work running now.
    bool cancelled() const { return cancelled_; }

  private:
    struct Finish {
        SqliteWatch& watch;
        ~Finish() { watch.finish(); }
    };
    static int onProgress(void* watch);
    static int onBusy(void* watch, int attempts);
    void serveWindows();
    void finish();

    int busyTimeoutMs_;
    int depth_ = 0;
    bool timing_ = false;
    bool cancelled_ = false;
    bool noWait_ = false;
    QElapsedTimer running_;
    QElapsedTimer sinceServed_;
    QElapsedTimer busy_;
    std::unique_ptr<StatementWait> wait_;
};

}  // namespace qivo::database
