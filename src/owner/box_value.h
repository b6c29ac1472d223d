#pragma once

#include <QString>
#include <QVariant>

namespace qivo {

// What a box stores: Null when it is empty, otherwise its text as typed, blanks included.
inline QVariant textOrNull(const QString& text) {
    return text.isEmpty() ? QVariant() : QVariant(text);
}

// A text stored as it stands, so empty text stays empty text (the driver binds a null text as
// Null).
inline QVariant textAsIs(const QString& text) {
    return text.isNull() ? QVariant(QStringLiteral("")) : QVariant(text);
}

}  // namespace qivo
