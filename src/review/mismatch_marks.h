#pragma once

#include <QString>

namespace qivo::widgets {
class TextBox;
}

namespace qivo::review {

// Marks a registration box whose text differs from the owner's record (blanks at either end
// not counted), with the owner's value as its tool tip; a matching box loses its mark.
void markMismatch(widgets::TextBox* registered, const QString& ownerValue);
void clearMismatch(widgets::TextBox* registered);
bool isMarkedMismatch(const widgets::TextBox* registered);

}  // namespace qivo::review
