#include "database/odbc/odbc_wait.h"

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>

#include <QThreadPool>

#include "database/statement_wait.h"
#include "runtime/runtime_error.h"

namespace qivo::database {

// The statement the work runs now, for a cancel from the waiting thread.
struct CancelTarget {
    std::mutex mutex;
    void* statement = nullptr;
    bool cancelled = false;
};

namespace {

thread_local CancelTarget* currentTarget = nullptr;

}  // namespace

OdbcTask::OdbcTask()
    : target_(std::make_unique<CancelTarget>()), started_(std::chrono::steady_clock::now()) {}

OdbcTask::~OdbcTask() = default;

std::shared_ptr<OdbcTask> OdbcTask::start(std::function<void(OdbcTask&)> work) {
    std::shared_ptr<OdbcTask> task(new OdbcTask);
    // The worker keeps the task alive: the waiting thread may drop it before the work ends.
    QThreadPool::globalInstance()->start([task, work = std::move(work)] {
        currentTarget = task->target_.get();
        std::exception_ptr error;
        try {
            work(*task);
        } catch (...) {
            error = std::current_exception();
        }
        currentTarget = nullptr;
        std::lock_guard lock(task->mutex_);
        task->ended_ = true;
        task->error_ = error;
        task->changed_.notify_all();
    });
    return task;
}

void OdbcTask::handOver(const std::function<void()>& change) {
    std::lock_guard lock(mutex_);
    change();
    changed_.notify_all();
}

bool OdbcTask::waitFor(const std::function<bool()>& take) {
    using std::chrono::milliseconds;
    std::unique_lock lock(mutex_);
    bool took = false;
    const auto done = [&] {
        took = took || take();
        return took || ended_;
    };
    if (!waitMade_ &&
        !changed_.wait_until(lock, started_ + milliseconds(kWaitShownAfterMs), done)) {
        lock.unlock();
        wait_ = makeStatementWait();
        waitMade_ = true;
        served_ = std::chrono::steady_clock::now();
        lock.lock();
    }
    if (!wait_) {
        changed_.wait(lock, done);
    }
    // Once the wait is shown the windows are served every poll, hand-overs coming or not.
    while (wait_) {
        const auto due = served_ + milliseconds(kWaitPollMs);
        const bool ready = changed_.wait_until(lock, due, done);
        if (ready && std::chrono::steady_clock::now() < due) {
            break;
        }
        lock.unlock();
        served_ = std::chrono::steady_clock::now();
        if (wait_->keepAlive(0)) {
            cancel();
        }
        lock.lock();
        if (ready) {
            break;
        }
    }
    const bool ended = ended_;
    lock.unlock();
    if (ended) {
        closeWait();
    }
    return took;
}

void OdbcTask::finish() {
    settle();
    if (!error_) {
        return;
    }
    try {
        std::rethrow_exception(error_);
    } catch (const runtime::RuntimeError&) {
        if (target_->cancelled) {
            throwCancelled();
        }
        throw;
    }
}

void OdbcTask::settle() {
    waitFor([] { return false; });
}

void OdbcTask::closeWait() {
    wait_.reset();
}

void OdbcTask::cancel() {
    std::lock_guard lock(target_->mutex);
    if (target_->cancelled) {
        return;
    }
    target_->cancelled = true;
    if (target_->statement) {
        SQLCancel(target_->statement);
    }
}

void runOdbcWork(const std::function<void()>& work) {
    if (currentTarget) {
        work();
        return;
    }
    OdbcTask::start([&work](OdbcTask&) { work(); })->finish();
}

bool inOdbcWork() {
    return currentTarget != nullptr;
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
