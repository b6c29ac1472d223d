#pragma once

#include <functional>

class QWidget;

namespace qivo {

// Shows the program's one register of approved accounts, opened from `opener` and in front of
// it. The program start sets it: the register stands beside the review screen, not below it.
inline std::function<void(const QWidget& opener)> showApprovedRegister;

}  // namespace qivo
