#pragma once

#include <QStringList>
#include <optional>

namespace qivo::app {

// The options that only inform: --help (-h) prints the usage and --version (-v) the version, on
// standard output; an option the program does not know prints the usage on standard error.
// Returns the exit status (0, or 2 for an unknown option) when one of them was given, nothing when
// the program is to go on. `arguments` are those after the program's name.
std::optional<int> answerInformationOptions(const QStringList& arguments);

}  // namespace qivo::app
