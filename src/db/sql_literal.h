#pragma once

#include <QString>

namespace qivo::db {

// A text value as it goes between the single quotes of a statement: each ' doubled, so no
// name or password can end the literal early. A value without ' comes back unchanged.
QString sqlText(const QString& value);

}  // namespace qivo::db
