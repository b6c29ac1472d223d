#pragma once

class QTextStream;

namespace qivo::check {

enum CheckResult { AllPresent = 0, SomethingMissing = 1, NoConnection = 2 };

// The administrator's check of a workstation, with no sign-in and no window: the settings read,
// the engine and driver, a connection made as the program makes it, every table and column the
// program uses, and the owner keys the review panel relies on. Writes the report to out and
// returns the process exit status.
int checkWorkstation(QTextStream& out);

}  // namespace qivo::check
