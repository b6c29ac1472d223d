#pragma once

#include <QString>
#include <QStringList>

namespace qivo {

// The command-line text the program was started with (its arguments after its name, joined
// with single blanks), as the sign-in form reads it at load.
QString Command();
void setCommand(const QString& text);

// The ten comma-separated session fields of a command line; fewer than ten is
// RuntimeError SubscriptOutOfRange, the start-up error of a malformed command line.
QStringList commandLineFields(const QString& text);

}  // namespace qivo
