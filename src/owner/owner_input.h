#pragma once

#include <QString>

namespace qivo::widgets {
class TextBox;
}

namespace qivo::owner_input {

// Keeps a box to what its column of the estate schema holds, counted as the server counts; the
// tool tip says how much that is.
void limitToColumn(widgets::TextBox* box, const QString& table, const QString& column);

// Whether text fits the column; a column the program knows no size of takes any text.
bool fitsColumn(const QString& text, const QString& table, const QString& column);

// The message for text too long for the column, naming the field by its label.
QString tooLongMessage(const QString& label, const QString& table, const QString& column);

// The date spellings a date box takes, for its tool tip.
QString dateFormsTip();

// A label's text as a field name in a message: without the blanks that space it out.
QString fieldName(const QString& labelText);

}  // namespace qivo::owner_input
