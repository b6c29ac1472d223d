#pragma once

#include <QString>

namespace qivo::runtime {

// The text without the blanks (the space character only) at either end; other white space,
// such as a full-width space, stays part of the text.
QString trimBlanks(const QString& text);

}  // namespace qivo::runtime
