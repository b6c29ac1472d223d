#pragma once

#include <functional>

namespace qivo::platform {

// Ends the program: every window is closed and the event loop is left.
void End();

// Lets a test observe End() instead of ending; an empty function restores the default.
void setEndHandler(std::function<void()> handler);

}  // namespace qivo::platform
