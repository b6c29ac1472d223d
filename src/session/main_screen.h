#pragma once

#include <functional>

namespace qivo {

// Shows the review screen and brings it to the front. The program start sets it: the review
// screen belongs to a layer above this one.
inline std::function<void()> showMainScreen;

}  // namespace qivo
