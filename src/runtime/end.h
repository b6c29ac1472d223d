#pragma once

#include <functional>

namespace qivo::runtime {

// Ends the program: every window is closed and the event loop is left.
void End();

// True once End() has run, so main() can skip the event loop when the program ended during
// start-up, before the loop was entered.
bool endRequested();

// Lets a test observe End() instead of ending; an empty function restores the default.
void setEndHandler(std::function<void()> handler);

}  // namespace qivo::runtime
