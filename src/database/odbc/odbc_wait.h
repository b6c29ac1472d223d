#pragma once

#include <chrono>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>

namespace qivo::database {

class StatementWait;
struct CancelTarget;

// Work that talks to the server, run on a worker thread while this thread waits for what it
// hands over, so the windows can be served when that takes long: still waiting a moment after
// the work began, the waiting thread shows the statement wait, whose cancel reaches the statement
// on the server (SQLCancel); the work then ends in the cancelled error.
class OdbcTask {
  public:
    // Starts work on a worker thread; it hands its results over through the task it is given.
    static std::shared_ptr<OdbcTask> start(std::function<void(OdbcTask&)> work);
    ~OdbcTask();
    OdbcTask(const OdbcTask&) = delete;
    OdbcTask& operator=(const OdbcTask&) = delete;

    // For the work: makes a change the waiting thread may be waiting for, under the task's lock.
    void handOver(const std::function<void()>& change);

    // For the waiting thread: waits until take(), asked under the task's lock, takes something
    // the work handed over, or until the work has ended; whether it took.
    bool waitFor(const std::function<bool()>& take);
    // Waits for the work's end and throws what it failed with: the cancelled error once the
    // user has cancelled it.
    void finish();
    // Waits for the work's end, leaving what it failed with to whoever reads its results.
    void settle();
    // Takes the statement wait away while the waiting thread goes on without waiting.
    void closeWait();

  private:
    OdbcTask();
    void cancel();

    std::mutex mutex_;
    std::condition_variable changed_;
    bool ended_ = false;
    std::exception_ptr error_;
    std::unique_ptr<CancelTarget> target_;
    std::chrono::steady_clock::time_point started_;
    // The waiting thread's own.
    std::unique_ptr<StatementWait> wait_;
    bool waitMade_ = false;
    std::chrono::steady_clock::time_point served_;  // when the windows were last served
};

// Runs work on a worker thread and waits for its end as OdbcTask::finish does. Work started from
// inside such work runs where it is.
void runOdbcWork(const std::function<void()>& work);
// Whether this thread is running such work.
bool inOdbcWork();

// A statement (SQLHSTMT) made by such work is about to run, or is about to be freed: a cancel
// reaches the one running. A statement about to run after a cancel ends in the cancelled error.
void statementStarting(void* statement);
void statementEnding(void* statement);
// Such work is about to commit what it wrote: after a cancel it ends in the cancelled error
// instead, and a cancel from now on has nothing left to stop.
void commitStarting();

}  // namespace qivo::database
