#pragma once

#include <QString>
#include <QStringList>

namespace qivo {

// The command-line text the program was started with (its arguments after its name, joined
// with single blanks), as the sign-in form reads it at load.
QString Command();
void setCommand(const QString& text);

// The session text another program started this one with. On Windows it is the command line as
// the system holds it, after the program's name, quotes and blanks as they were typed; elsewhere
// the arguments after the program's name, joined with single blanks.
QString sessionText(const QStringList& arguments);

// The part of a Windows command line after the program's name, the name taken as Windows takes
// it: up to the closing quote when it begins with one, else up to the first blank or tab; the
// blanks and tabs that follow it are skipped.
QString afterProgramName(const QString& commandLine);

// The ten comma-separated session fields of a command line; fewer than ten is
// RuntimeError SubscriptOutOfRange, the start-up error of a malformed command line.
QStringList commandLineFields(const QString& text);

}  // namespace qivo
