#pragma once

#include <functional>

namespace qivo::database {

// Runs work that talks to the server on a worker thread while this thread waits for it, so the
// windows can be served when it takes long: still running after a moment, it shows the statement
// wait, whose cancel reaches the statement on the server (SQLCancel); the work then ends in the
// cancelled error. Work started from inside such work runs where it is.
void runOdbcWork(const std::function<void()>& work);

// A statement (SQLHSTMT) made by such work is about to run, or is about to be freed: a cancel
// reaches the one running. A statement about to run after a cancel ends in the cancelled error.
void statementStarting(void* statement);
void statementEnding(void* statement);
// Such work is about to commit what it wrote: after a cancel it ends in the cancelled error
// instead, and a cancel from now on has nothing left to stop.
void commitStarting();

}  // namespace qivo::database
