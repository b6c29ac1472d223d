#pragma once

#include <functional>
#include <memory>

namespace qivo::database {

// What the user sees of a statement the database has not answered after a moment. The layer that
// owns the windows makes it; the database code only asks it to keep the windows alive and whether
// the user wants the statement cancelled. It disappears when destroyed.
class StatementWait {
  public:
    virtual ~StatementWait() = default;
    // Handles the window events that are due, waiting up to waitMs for one; true once the user
    // has asked to cancel.
    virtual bool keepAlive(int waitMs) = 0;
};

// Makes the wait for a slow statement; without one (or when it makes none) the statement simply
// blocks until it ends.
using StatementWaitFactory = std::function<std::unique_ptr<StatementWait>()>;
void setStatementWaitFactory(StatementWaitFactory factory);
std::unique_ptr<StatementWait> makeStatementWait();

// How long a statement runs before the wait is shown, and how often the windows are served then.
inline constexpr int kWaitShownAfterMs = 1000;
inline constexpr int kWaitPollMs = 20;

// The error a statement the user cancelled ends with.
inline constexpr long kCancelledError = 3712;
[[noreturn]] void throwCancelled();

}  // namespace qivo::database
