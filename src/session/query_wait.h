#pragma once

namespace qivo {

// Statements still running after a moment show the wait window (正在查询数据库… with 取消)
// over the active window, once the program has windows.
void showWaitWindowForSlowStatements();

}  // namespace qivo
