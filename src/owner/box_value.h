#pragma once

#include <QString>
#include <QVariant>

namespace qivo {

// What a box stores: Null when it is empty, otherwise its text as typed, blanks included.
inline QVariant textOrNull(const QString& text) {
    return text.isEmpty() ? QVariant() : QVariant(text);
}

}  // namespace qivo
