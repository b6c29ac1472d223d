#include "database/odbc/odbc_wait.h"

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>

#include <QThreadPool>
#include <chrono>
#include <future>
#include <mutex>

#include "database/statement_wait.h"
#include "runtime/runtime_error.h"

namespace qivo::database {
namespace {

// The statement the work runs now, for a cancel from the waiting thread.
struct CancelTarget {
    std::mutex mutex;
    void* statement = nullptr;
    bool cancelled = false;

    void cancel() {
        std::lock_guard lock(mutex);
        cancelled = true;
        if (statement) {
            SQLCancel(statement);
        }
    }
};

thread_local CancelTarget* currentTarget = nullptr;

// Waits for the work, showing the statement wait once it has taken a moment.
void await(std::future<void>& finished, CancelTarget& target) {
    using std::chrono::milliseconds;
    if (finished.wait_for(milliseconds(kWaitShownAfterMs)) == std::future_status::ready) {
        return;
    }
    const std::unique_ptr<StatementWait> wait = makeStatementWait();
    if (!wait) {
        return;
    }
    while (finished.wait_for(milliseconds(0)) != std::future_status::ready) {
        if (wait->keepAlive(kWaitPollMs) && !target.cancelled) {
            target.cancel();
        }
    }
}

}  // namespace

void runOdbcWork(const std::function<void()>& work) {
    if (currentTarget) {
        work();
        return;
    }
    CancelTarget target;
    // The worker owns the promise: the waiting thread may go on as soon as it is kept.
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> finished = done->get_future();
    QThreadPool::globalInstance()->start([&work, &target, done] {
        currentTarget = &target;
        try {
            work();
            currentTarget = nullptr;
            done->set_value();
        } catch (...) {
            currentTarget = nullptr;
            done->set_exception(std::current_exception());
        }
    });
    await(finished, target);
    try {
        finished.get();
    } catch (const runtime::RuntimeError&) {
        if (target.cancelled) {
            throwCancelled();
        }
        throw;
    }
}

void statementStarting(void* statement) {
    if (!currentTarget) {
        return;
    }
    std::lock_guard lock(currentTarget->mutex);
    if (currentTarget->cancelled) {
        throwCancelled();
    }
    currentTarget->statement = statement;
}

void statementEnding(void* statement) {
    if (!currentTarget) {
        return;
    }
    std::lock_guard lock(currentTarget->mutex);
    if (currentTarget->statement == statement) {
        currentTarget->statement = nullptr;
    }
}

void commitStarting() {
    statementStarting(nullptr);
}

}  // namespace qivo::database
