#pragma once

#include <QString>
#include <cstdio>

namespace qivo::app {

// Writes text for a person at a terminal to stdout or stderr. On Windows a program of the window
// subsystem starts without a console: the text then goes to the console of the command prompt
// that started it, when there is one, as wide text so that Chinese shows in any code page.
void writeConsole(std::FILE* stream, const QString& text);

}  // namespace qivo::app
